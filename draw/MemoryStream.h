#pragma once

#include "platform/Stream.h"

#include <cstddef>
#include <memory>

namespace kx::draw {

struct EndReference
{
    void operator()(IUnknown* p) const noexcept { p->Release(); }
};
using StreamPtr = std::unique_ptr<IStream, EndReference>;

// A memory block that ends with its last owner; null for a lack of memory.
std::shared_ptr<void> AllocBlock(UINT nFlags, std::size_t nBytes);

// A block with a copy of some bytes, and a stream over it. The block must outlive the stream. Null both for a
// lack of memory or null `pData`.
struct MemoryStream
{
    std::shared_ptr<void> pBlock;
    StreamPtr pStream;

    static MemoryStream CopyOf(const void* pData, std::size_t nBytes);
};

// An empty stream that owns a growing block of its own; null for a lack of memory.
StreamPtr MakeGrowingStream();

// Copies a stream's whole block into a new array, which the caller ends with array delete. 0, with the
// results as they were, on failure.
int CopyOut(IStream* pStream, BYTE** ppData, int& nSize);

} // namespace kx::draw

#pragma once

#include "platform/gdiplus/GifIndex.h"

#include <cstddef>
#include <vector>

namespace kx::gdiplus {

// Decodes the indices of a GIF's frame.
class GifIndices
{
public:
    // Room for so many. Throws std::bad_alloc.
    explicit GifIndices(std::size_t nRoom) : m_bytes(nRoom) {}

    // Gives how many rows could be decoded, in the order in which the file has them: fewer than the frame's
    // where its data end or go wrong.
    int Decode(FileBytes file, const GifFrame& frame) noexcept;
    const BYTE* Bytes() const noexcept { return m_bytes.data(); }

private:
    std::vector<BYTE> m_bytes;
};

} // namespace kx::gdiplus

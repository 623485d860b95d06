#pragma once

#include "include/platform/Stream.h"
#include "platform/Handles.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>

namespace kx::stream {

// The bytes under a memory block's handle. A stream may hold them longer than the handle lives: they are gone
// then.
class Block
{
public:
    // Null for a lack of memory or a size beyond the limit.
    static std::shared_ptr<Block> Make(UINT nFlags, std::size_t nBytes);

    Block(bool bMoveable, std::unique_ptr<BYTE, decltype(&std::free)> bytes, std::size_t nBytes) noexcept;

    BYTE* Bytes() noexcept { return m_bytes.get(); }
    std::size_t Size() const noexcept { return m_nSize; }
    bool IsMoveable() const noexcept { return m_bMoveable; }

    // Makes it longer; what is new is zero. False for what can't be, the block then staying as it is.
    bool Grow(std::size_t nBytes) noexcept;
    // Frees the bytes.
    void End() noexcept;

    std::atomic<int> locks{0};

private:
    std::unique_ptr<BYTE, decltype(&std::free)> m_bytes;
    std::size_t m_nSize;
    std::size_t m_nRoom;
    const bool m_bMoveable;
    const LiveHandle m_live;
};

// The block of a handle, or null. Any thread.
std::shared_ptr<Block> FindBlock(HGLOBAL hBlock) noexcept;

} // namespace kx::stream

#pragma once

#include "include/platform/Gdi.h"
#include "platform/gdi/BigBlock.h"

#include <atomic>
#include <cstddef>
#include <utility>

namespace kx::gdi {

// Memory for pixels, which begins at a multiple of BLOCK_ALIGNMENT bytes. Counted: it ends with its last
// owner.
class PixelBlock
{
public:
    // Pixels that may be anything; an empty block for a lack of memory.
    static PixelBlock Make(std::size_t nPixels) noexcept;
    PixelBlock() = default;
    PixelBlock(const PixelBlock& other) noexcept : m_pixels(other.m_pixels)
    {
        if (m_pixels) Count().fetch_add(1, std::memory_order_relaxed);
    }
    PixelBlock(PixelBlock&& other) noexcept : m_pixels(std::exchange(other.m_pixels, nullptr)) {}
    PixelBlock& operator=(PixelBlock other) noexcept
    {
        std::swap(m_pixels, other.m_pixels);
        return *this;
    }
    ~PixelBlock()
    {
        if (m_pixels) Release();
    }

    explicit operator bool() const noexcept { return m_pixels; }
    DWORD* Get() const noexcept { return m_pixels; }
    // Whether it has other owners. If not, what those before them did with it has happened before.
    bool IsShared() const noexcept { return m_pixels && Count().load(std::memory_order_acquire) > 1; }

private:
    using Counter = std::atomic<unsigned>;

    Counter& Count() const noexcept { return *reinterpret_cast<Counter*>(Start()); }
    char* Start() const noexcept { return reinterpret_cast<char*>(m_pixels) - BLOCK_ALIGNMENT; }
    void Release() noexcept;

    DWORD* m_pixels = nullptr; // behind the counter
};

} // namespace kx::gdi

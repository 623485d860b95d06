#pragma once

#include "platform/gdi/PixelRegion.h"
#include "platform/gdi/Surface.h"

#include <atomic>
#include <mutex>
#include <optional>

namespace kx::gdi {

// The part of a new surface that nobody has written to yet. It is black, but is made so only when somebody
// needs it: a client that paints on a surface of its own mostly writes all of it anyway.
class BlackRest
{
public:
    // None.
    BlackRest() = default;
    // All of a surface.
    explicit BlackRest(const RECT& whole) : m_rest(whole), m_bAny(true) {}

    bool IsAny() const noexcept { return m_bAny.load(std::memory_order_acquire); }
    // Makes the rest of that surface black. Any thread; then there is none.
    void Lay(Surface& surface) noexcept
    {
        if (IsAny()) LayNow(surface);
    }
    // To be called before all of a rectangle within it is written.
    void Leave(Surface& surface, const RECT& written) noexcept
    {
        if (IsAny()) LeaveNow(surface, written);
    }

private:
    void LayNow(Surface& surface) noexcept;
    void LeaveNow(Surface& surface, const RECT& written) noexcept;
    void Fill(Surface& surface) noexcept;

    std::mutex m_lock;
    std::optional<PixelRegion> m_rest; // something as long as there is any
    int m_nWrites = 0;
    std::atomic<bool> m_bAny{false};
};

} // namespace kx::gdi

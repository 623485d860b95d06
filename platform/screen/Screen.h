#pragma once

#include "include/KXExport.h"

#include "platform/gdi/DeviceContext.h"
#include "platform/sync/Mutex.h"

#include <memory>
#include <optional>
#include <utility>

// The pixels of the desktop and of the windows: device contexts draw on them, and the desktop puts them
// together.
namespace kx::screen {

// Guards the pixels of all windows and of the desktop. Taken before the lock of texts.
extern KX_API sync::Mutex pixelLock;

// Pixels on which several contexts draw, and which are shown: a window's, or the desktop's.
struct Backing
{
    // Gives the pixels that a reader sees in place of the surface, of which the rectangle is up to date. The
    // lock, which is held, is free while a display is waited for.
    using Look = gdi::Surface& (*)(const RECT& rect, gdi::Surface& surface);

    explicit Backing(gdi::Surface pixels, Look seen = nullptr) noexcept
        : surface(std::move(pixels)), look(seen)
    {
    }
    gdi::Surface surface KX_GUARDED_BY(pixelLock);
    const Look look; // null where a reader sees the surface itself
};

// A device context that draws on a window's pixels, or with null for the window on the desktop's.
class Context final : public gdi::DeviceContext
{
public:
    Context(HWND hWnd, std::shared_ptr<Backing> pixels, const std::optional<gdi::PixelRegion>& limit)
        : DeviceContext(pixels->surface, pixelLock, limit), window(hWnd), m_pixels(std::move(pixels))
    {
    }
    const HWND window;

private:
    gdi::Surface& Look(const RECT& rect) override
    {
        pixelLock.AssertHeld();
        return m_pixels->look ? m_pixels->look(rect, m_pixels->surface) : m_pixels->surface;
    }

    const std::shared_ptr<Backing> m_pixels;
};

// The desktop's pixels below all windows. Never destroyed.
class Screen
{
public:
    KX_API static Screen& Instance();

    // The desktop's pixels, made at the first use of a size; null for a lack of memory. `look` gives what is
    // seen of them below the windows.
    const std::shared_ptr<Backing>& Root(SIZE size, Backing::Look look) KX_REQUIRES(pixelLock);
    // Lets the next Root be made anew, for another desktop. A holder of the old one keeps it.
    void Forget() noexcept KX_REQUIRES(pixelLock) { m_root.reset(); }

private:
    std::shared_ptr<Backing> m_root KX_GUARDED_BY(pixelLock);
};

// The pixels that a window keeps, black at first. Null for a size of 0 and for a lack of memory.
std::shared_ptr<Backing> MakeBacking(SIZE size);

// Gives a window's pixels another size, if they have it not; what both sizes share stays. Gives the old size,
// 0 by 0 without pixels. Under the lock.
SIZE Resize(std::shared_ptr<Backing>& backing, SIZE size) KX_REQUIRES(pixelLock);

} // namespace kx::screen

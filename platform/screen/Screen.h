#pragma once

#include "include/KXExport.h"

#include "platform/gdi/DeviceContext.h"

#include <memory>
#include <optional>
#include <utility>

// The pixels of the desktop and of the windows: device contexts draw on them, and the desktop puts them
// together.
namespace kx::screen {

using Backing = gdi::SharedSurface;

// A device context that draws on a window's pixels, or with null for the window on the desktop's.
class Context final : public gdi::DeviceContext
{
public:
    Context(HWND hWnd, std::shared_ptr<Backing> pixels, const std::optional<gdi::PixelRegion>& limit)
        : DeviceContext(std::move(pixels), limit), window(hWnd)
    {
    }
    const HWND window;
};

// The desktop's pixels below all windows. Never destroyed.
class Screen
{
public:
    KX_API static Screen& Instance();

    // The desktop's pixels, made at the first use of a size; null for a lack of memory. `look` gives what is
    // seen of them below the windows.
    const std::shared_ptr<Backing>& Root(SIZE size, Backing::Look look) KX_REQUIRES(gdi::pixelLock);
    // Lets the next Root be made anew, for another desktop. A holder of the old one keeps it.
    void Forget() noexcept KX_REQUIRES(gdi::pixelLock) { m_root.reset(); }

private:
    std::shared_ptr<Backing> m_root KX_GUARDED_BY(gdi::pixelLock);
};

// The pixels that a window keeps, black at first. Null for a size of 0 and for a lack of memory.
std::shared_ptr<Backing> MakeBacking(SIZE size);

// Gives a window's pixels another size, if they have it not; what both sizes share stays. Gives the old size,
// 0 by 0 without pixels. Under the lock.
SIZE Resize(std::shared_ptr<Backing>& backing, SIZE size) KX_REQUIRES(gdi::pixelLock);

} // namespace kx::screen

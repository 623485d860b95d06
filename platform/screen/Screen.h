#pragma once

#include "platform/gdi/Canvas.h"

#include <memory>
#include <mutex>

// What is shown: the pixels of the desktop and of the windows, which contexts draw on and the desktop puts
// together.
namespace kx::screen {

using Backing = gdi::SharedSurface;

// The desktop's pixels below all windows, and the lock of everything that is shown on it. Never destroyed.
class Screen
{
public:
    static Screen& Instance();

    // Guards the pixels of the desktop and of all windows. Taken before the lock of texts.
    std::recursive_mutex lock;

    // The desktop's pixels, made at the first use of a size; null for a lack of memory. `look` gives what is
    // seen of them below the windows. Under the lock.
    const std::shared_ptr<Backing>& Root(SIZE size, gdi::Surface& (*look)(const RECT&, gdi::Surface&));
    // Lets the next Root be made anew, for another desktop. A holder of the old one keeps it.
    void Forget() noexcept { m_root.reset(); }

private:
    std::shared_ptr<Backing> m_root;
};

// The pixels that a window keeps, black at first. Null for a size of 0 and for a lack of memory.
std::shared_ptr<Backing> MakeBacking(SIZE size);

// Gives a window's pixels another size, if they have it not; what both sizes share stays. Gives the old size,
// 0 by 0 without pixels. Under the lock.
SIZE Resize(std::shared_ptr<Backing>& backing, SIZE size);

} // namespace kx::screen

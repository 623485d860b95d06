#pragma once

#include "platform/gdi/Backing.h"

#include <memory>
#include <mutex>

namespace kx::gdi {

// The desktop's pixels below all windows, and the lock of everything that is shown on it. Never destroyed.
class Screen
{
public:
    static Screen& Instance();

    // Guards the pixels of the desktop and of all windows.
    std::recursive_mutex lock;

    // Of the desktop's size, made at the first use; null for a lack of memory. Under the lock.
    const std::shared_ptr<Backing>& Root();
    // Lets the next Root be made anew, for another desktop. Who holds the old one keeps it.
    void Forget() noexcept { m_root.reset(); }

private:
    std::shared_ptr<Backing> m_root;
};

} // namespace kx::gdi

#pragma once

#include "platform/sync/Mutex.h"
#include "platform/window/Window.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace kx::window {

// A handle for a new window, of this process or another: a number that is never used again, so that one that
// ended, or never was, names nothing; a later window's is greater. Any thread.
HWND NewHandle() noexcept;

// The desktop's own window, which is in no table: smaller than every handle that NewHandle gives.
inline const HWND kDesktopHandle = reinterpret_cast<HWND>(std::uintptr_t{0x10000});

// The windows of this process. Any thread.
class WindowTable
{
public:
    static WindowTable& Instance();

    void Add(const std::shared_ptr<Window>& window);
    void Remove(HWND hWnd) noexcept;
    // Null for a handle that isn't one of this process.
    std::shared_ptr<Window> Find(HWND hWnd) const noexcept;
    // Any window of that thread, null when it has none.
    std::shared_ptr<Window> FindOwnedBy(const Queue& owner) const noexcept;
    std::vector<HWND> Handles() const;
    std::vector<HWND> HandlesOf(const Queue& owner) const; // oldest first

private:
    mutable sync::Mutex m_lock;
    std::map<HWND, std::shared_ptr<Window>> m_windows KX_GUARDED_BY(m_lock);
};

} // namespace kx::window

#pragma once

#include "include/KXExport.h"

#include "platform/sync/Mutex.h"
#include "platform/window/Window.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace kx::window {

// The number of a new window, of this process or another, that is greater than those of all older ones. One
// of another process, which the table of handles doesn't name, has it as its handle. Any thread.
KX_API std::uintptr_t NewAge() noexcept;

// The desktop's own window, which is in no table: older than all others.
inline constexpr std::uintptr_t kDesktopAge = 0x10000;
inline const HWND kDesktopHandle = reinterpret_cast<HWND>(kDesktopAge);

// The windows of this process, which the one table of handles names. Any thread.
class WindowTable
{
public:
    KX_API static WindowTable& Instance();

    // Null, with the last error set, for a lack of memory.
    HWND Add(const std::shared_ptr<Window>& window);
    void Remove(HWND hWnd) noexcept;
    // Null for a handle that isn't one of this process.
    std::shared_ptr<Window> Find(HWND hWnd) const noexcept { return FindHandle<Window>(hWnd); }
    // Any window of that thread, null when it has none.
    std::shared_ptr<Window> FindOwnedBy(const Queue& owner) const noexcept;
    // The windows, oldest first: all, or with an owner those of its thread.
    std::vector<HWND> Handles(const Queue* owner = nullptr) const;

private:
    mutable sync::Mutex m_lock;
    std::vector<std::shared_ptr<Window>> m_windows KX_GUARDED_BY(m_lock); // oldest first
};

} // namespace kx::window

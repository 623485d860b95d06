#include "platform/window/WindowTable.h"

#include "platform/Errno.h"
#include "platform/Handles.h"
#include "platform/Immortal.h"
#include "platform/text/CharWalk.h"
#include "platform/window/Desktop.h"

#include <algorithm>
#include <map>
#include <memory>

namespace kx::window {

std::uintptr_t NewAge() noexcept
{
    static std::atomic<std::uintptr_t> last{kDesktopAge};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

WindowTable& WindowTable::Instance()
{
    return The<WindowTable>();
}

HWND WindowTable::Add(const std::shared_ptr<Window>& window)
{
    const sync::MutexLock lock(m_lock);
    m_windows.push_back(window);
    window->SetHandle(static_cast<HWND>(AddHandle(window)), NewAge());
    if (!window->Handle()) m_windows.pop_back();
    return window->Handle();
}

void WindowTable::Remove(HWND hWnd) noexcept
{
    const auto window = RemoveHandle<Window>(hWnd); // ends when the lock is free again
    const sync::MutexLock lock(m_lock);
    std::erase(m_windows, window);
}

std::shared_ptr<Window> WindowTable::FindOwnedBy(const Queue& owner) const noexcept
{
    const sync::MutexLock lock(m_lock);
    const auto it = std::ranges::find_if(m_windows, [&](const auto& w) { return &w->Owner() == &owner; });
    return it == m_windows.end() ? nullptr : *it;
}

std::vector<HWND> WindowTable::Handles(const Queue* owner) const
{
    std::vector<HWND> handles;
    const sync::MutexLock lock(m_lock);
    for (const auto& window : m_windows)
        if (!owner || &window->Owner() == owner) handles.push_back(window->Handle());
    return handles;
}

} // namespace kx::window

namespace {

// The desktop, opened by its name: there is one, so that nothing is known of it.
struct OpenDesktop
{
    static constexpr kx::HandleKind HANDLE_KIND = kx::HandleKind::Desktop;
};

// The windows of every process by their age.
std::map<std::uintptr_t, HWND> AllWindows()
{
    std::map<std::uintptr_t, HWND> windows;
    for (const HWND hWnd : kx::window::WindowTable::Instance().Handles())
        if (const auto window = kx::window::WindowTable::Instance().Find(hWnd))
            windows.emplace(window->Age(), hWnd);
    for (const HWND hWnd : kx::window::Desktop::Instance().ForeignWindows())
        windows.emplace(reinterpret_cast<std::uintptr_t>(hWnd), hWnd);
    return windows;
}

} // namespace

HDESK OpenDesktopA(const char* pszName, DWORD, int, DWORD)
try {
    if (pszName && kx::text::CompareNoCase(pszName, "Default") == 0)
        return static_cast<HDESK>(kx::AddHandle(std::make_shared<OpenDesktop>()));
    SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
} catch (...) {
    return kx::NoMemory();
}

int CloseDesktop(HDESK hDesk)
{
    return kx::RemoveHandle<OpenDesktop>(hDesk) ? 1 : kx::Fail(ERROR_INVALID_HANDLE);
}

int EnumDesktopWindows(HDESK hDesk, WNDENUMPROC pfn, long lParam)
try {
    if (!pfn) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (hDesk && !kx::FindHandle<OpenDesktop>(hDesk)) return kx::Fail(ERROR_INVALID_HANDLE);
    for (const auto& [age, hWnd] : AllWindows())
        if (IsWindow(hWnd) && !pfn(hWnd, lParam)) return 0;
    return 1;
} catch (...) {
    return kx::NoMemory();
}

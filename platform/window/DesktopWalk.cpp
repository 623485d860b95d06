#include "platform/Errno.h"
#include "platform/Handles.h"
#include "platform/NoMemory.h"
#include "platform/text/CharWalk.h"
#include "platform/window/Desktop.h"
#include "platform/window/WindowTable.h"

#include <map>
#include <memory>

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

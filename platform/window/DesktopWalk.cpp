#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/NoMemory.h"
#include "platform/sync/Mutex.h"
#include "platform/text/CharWalk.h"
#include "platform/window/Desktop.h"
#include "platform/window/WindowTable.h"

#include <map>
#include <set>

namespace {

// The open handles of the desktop: numbers that are never used again.
class OpenDesktops
{
public:
    static OpenDesktops& Instance()
    {
        static kx::Immortal<OpenDesktops> open;
        return open.Get();
    }

    HDESK Open()
    {
        const kx::sync::MutexLock lock(m_lock);
        const auto handle = reinterpret_cast<HDESK>(++m_last);
        m_open.insert(handle);
        return handle;
    }
    bool Close(HDESK hDesk)
    {
        const kx::sync::MutexLock lock(m_lock);
        return m_open.erase(hDesk) != 0;
    }
    bool Has(HDESK hDesk) const
    {
        const kx::sync::MutexLock lock(m_lock);
        return m_open.contains(hDesk);
    }

private:
    mutable kx::sync::Mutex m_lock;
    std::uintptr_t m_last KX_GUARDED_BY(m_lock) = 0;
    std::set<HDESK> m_open KX_GUARDED_BY(m_lock);
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
    if (pszName && kx::text::CompareNoCase(pszName, "Default") == 0) return OpenDesktops::Instance().Open();
    SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
} catch (...) {
    return kx::NoMemory();
}

int CloseDesktop(HDESK hDesk)
{
    return OpenDesktops::Instance().Close(hDesk) ? 1 : kx::Fail(ERROR_INVALID_HANDLE);
}

int EnumDesktopWindows(HDESK hDesk, WNDENUMPROC pfn, long lParam)
try {
    if (!pfn) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (hDesk && !OpenDesktops::Instance().Has(hDesk)) return kx::Fail(ERROR_INVALID_HANDLE);
    for (const auto& [age, hWnd] : AllWindows())
        if (IsWindow(hWnd) && !pfn(hWnd, lParam)) return 0;
    return 1;
} catch (...) {
    return kx::NoMemory();
}

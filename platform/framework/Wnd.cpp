#include "include/platform/Wnd.h"

#include "include/platform/Exception.h"
#include "platform/Immortal.h"
#include "platform/framework/TempMap.h"
#include "platform/sync/Mutex.h"
#include "platform/sync/PerThread.h"
#include "platform/window/WindowState.h"

#include <cstdio>
#include <map>
#include <new>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>

IMPLEMENT_DYNAMIC(CWnd, CObject)

namespace {

// The objects of each thread that hear their windows' messages.
kx::sync::PerThread<std::unordered_map<HWND, CWnd*>>& Wnds()
{
    static kx::sync::PerThread<std::unordered_map<HWND, CWnd*>> wnds;
    return wnds;
}

// The calling thread's one for a window; null without one.
CWnd* ObjectOf(HWND hWnd)
{
    const auto* const wnds = Wnds().Find();
    const auto found = wnds ? wnds->find(hWnd) : decltype(wnds->find(hWnd)){};
    return wnds && found != wnds->end() ? found->second : nullptr;
}

// This thread's work now: the object that CreateEx makes a window for, and the message being handled.
thread_local CWnd* t_creating = nullptr;
thread_local const MSG* t_message = nullptr;

// Puts back at the end of a scope what stood there, also when a handler throws.
template <class T>
class Restore
{
public:
    Restore(T& place, T value) : m_place(place), m_old(std::exchange(place, std::move(value))) {}
    Restore(const Restore&) = delete;
    Restore& operator=(const Restore&) = delete;
    ~Restore() { m_place = std::move(m_old); }

private:
    T& m_place;
    T m_old;
};

const AFX_MSGMAP_ENTRY* FindHandler(const AFX_MSGMAP* map, UINT nMsg)
{
    for (; map; map = map->pfnGetBaseMap())
        for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pfnCall; ++entry)
            if (entry->nMessage == nMsg) return entry;
    return nullptr;
}

bool IsAlive(HWND hWnd)
{
    return IsWindow(hWnd);
}

void Bind(CWnd& wnd, HWND hWnd)
{
    wnd.m_hWnd = hWnd;
}

} // namespace

// The procedure of every window that CreateEx made, whose first message binds it to its object.
LRESULT AfxWndProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    if (CWnd* created = std::exchange(t_creating, nullptr)) {
        Wnds().Get()[hWnd] = created;
        created->m_hWnd = hWnd;
        created->m_bOwnsWindow = true;
    }
    CWnd* wnd = ObjectOf(hWnd);
    if (!wnd) return kx::window::CallClass(hWnd, nMsg, wParam, lParam);
    const MSG current{hWnd, nMsg, wParam, lParam, 0};
    const Restore message(t_message, &current);
    if (nMsg != WM_NCDESTROY) return wnd->WindowProc(nMsg, wParam, lParam);
    const LRESULT nResult = wnd->WindowProc(nMsg, wParam, lParam);
    Wnds().Get().erase(hWnd);
    wnd->m_bOwnsWindow = false;
    wnd->m_hWnd = nullptr;
    wnd->PostNcDestroy();
    return nResult;
}

// An exception out of the creation ends the window without a message. A handler may have ended the object, so
// it is looked for first.
void CWnd::LoseWindow() noexcept
{
    const CWnd* const self = this;
    auto* const wnds = Wnds().Find();
    if (!wnds || std::erase_if(*wnds, [&](const auto& entry) { return entry.second == self; }) == 0) return;
    m_bOwnsWindow = false;
    m_hWnd = nullptr;
}

int CWnd::CreateEx(DWORD, const char* pszClass, const char* pszName, DWORD dwStyle, const RECT& rect,
                   CWnd* pParent, UINT, void* pParam)
{
    if (m_hWnd) return 0;
    const Restore creating(t_creating, this);
    const HWND hParent = pParent ? pParent->m_hWnd : nullptr;
    try {
        return kx::window::Create({pParam, pszName, pszClass, rect.left, rect.top, rect.right - rect.left,
                                   rect.bottom - rect.top, dwStyle},
                                  hParent, AfxWndProc) != nullptr;
    } catch (const std::bad_alloc&) {
        LoseWindow();
        AfxThrowMemoryException();
    } catch (...) {
        LoseWindow();
        throw;
    }
}

LRESULT CWnd::WindowProc(UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    const AFX_MSGMAP_ENTRY* entry = FindHandler(GetMessageMap(), nMsg);
    return entry ? entry->pfnCall(*this, wParam, lParam) : DefWindowProc(nMsg, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    return m_bOwnsWindow ? kx::window::CallClass(m_hWnd, nMsg, wParam, lParam)
                         : DefWindowProcA(m_hWnd, nMsg, wParam, lParam);
}

LRESULT CWnd::Default()
{
    const MSG none{};
    const MSG& message = t_message ? *t_message : none;
    return DefWindowProc(message.message, message.wParam, message.lParam);
}

const char* AfxRegisterWndClass(UINT nStyle, HCURSOR hCursor, HBRUSH hBackground, HICON hIcon)
try {
    struct Names
    {
        kx::sync::Mutex lock;
        std::map<std::tuple<UINT, HCURSOR, HBRUSH, HICON>, std::string> names KX_GUARDED_BY(lock);
    };
    static kx::Immortal<Names> made;
    if (!hCursor) hCursor = LoadCursorA(nullptr, IDC_ARROW);
    Names& all = made.Get();
    char name[128];
    std::snprintf(name, sizeof name, "Afx:%x:%p:%p:%p", nStyle, static_cast<void*>(hCursor),
                  static_cast<void*>(hBackground), static_cast<void*>(hIcon));
    const kx::sync::MutexLock lock(all.lock);
    const auto [it, bNew] = all.names.try_emplace({nStyle, hCursor, hBackground, hIcon}, name);
    if (!bNew) return it->second.c_str();
    const WNDCLASSA cls{DefWindowProcA, name, hBackground, nStyle, hCursor, hIcon};
    if (RegisterClassA(&cls)) return it->second.c_str();
    all.names.erase(it);
    return nullptr;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

CWnd::~CWnd()
{
    if (m_bOwnsWindow) CWnd::DestroyWindow();
}

int CWnd::Attach(HWND hWnd)
{
    if (m_hWnd || !hWnd) return 0;
    m_hWnd = hWnd;
    return 1;
}

HWND CWnd::Detach()
{
    if (std::exchange(m_bOwnsWindow, false)) Wnds().Get().erase(m_hWnd);
    return std::exchange(m_hWnd, nullptr);
}

CWnd* CWnd::FromHandle(HWND hWnd)
{
    if (CWnd* const own = ObjectOf(hWnd)) return own;
    return kx::framework::TempMap<CWnd, HWND, IsAlive, Bind>::OfThread(hWnd);
}

int CWnd::DestroyWindow()
{
    return ::DestroyWindow(m_hWnd);
}

void CWnd::GetClientRect(RECT* pRect) const
{
    if (!::GetClientRect(m_hWnd, pRect)) *pRect = RECT{};
}

void CWnd::GetWindowRect(RECT* pRect) const
{
    if (!::GetWindowRect(m_hWnd, pRect)) *pRect = RECT{};
}

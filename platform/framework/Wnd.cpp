#include "include/platform/Wnd.h"

#include "platform/framework/TempMap.h"
#include "platform/framework/WndMap.h"

#include <utility>

IMPLEMENT_DYNAMIC(CWnd, CObject)

namespace {

bool IsAlive(HWND hWnd)
{
    return IsWindow(hWnd);
}

void Bind(CWnd& wnd, HWND hWnd)
{
    wnd.m_hWnd = hWnd;
}

} // namespace

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
    if (std::exchange(m_bOwnsWindow, false)) kx::framework::Wnds().Get().erase(m_hWnd);
    return std::exchange(m_hWnd, nullptr);
}

CWnd* CWnd::FromHandle(HWND hWnd)
{
    if (CWnd* const own = kx::framework::ObjectOf(hWnd)) return own;
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

// CWnd's own handlers, which handlers of derived classes call for the default handling.

#include "include/platform/Wnd.h"

const AFX_MSGMAP* CWnd::GetThisMessageMap()
{
    static const AFX_MSGMAP_ENTRY entries[] = {{0, nullptr}};
    static const AFX_MSGMAP map{[]() -> const AFX_MSGMAP* { return nullptr; }, entries};
    return &map;
}

const AFX_MSGMAP* CWnd::GetMessageMap() const
{
    return GetThisMessageMap();
}

int CWnd::OnCreate(CREATESTRUCTA*)
{
    return static_cast<int>(Default());
}

void CWnd::OnDestroy()
{
    Default();
}

void CWnd::OnClose()
{
    Default();
}

void CWnd::OnMove(int, int)
{
    Default();
}

void CWnd::OnSize(UINT, int, int)
{
    Default();
}

void CWnd::OnSetFocus(CWnd*)
{
    Default();
}

void CWnd::OnKillFocus(CWnd*)
{
    Default();
}

void CWnd::OnPaint()
{
    Default();
}

int CWnd::OnEraseBkgnd(CDC*)
{
    return static_cast<int>(Default());
}

void CWnd::OnShowWindow(int, UINT)
{
    Default();
}

void CWnd::OnTimer(UINT)
{
    Default();
}

void CWnd::OnKeyDown(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnChar(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnMouseMove(UINT, CPoint)
{
    Default();
}

void CWnd::OnLButtonDown(UINT, CPoint)
{
    Default();
}

void CWnd::OnLButtonUp(UINT, CPoint)
{
    Default();
}

void CWnd::OnKeyUp(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnSysKeyDown(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnSysChar(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnEnable(int)
{
    Default();
}

void CWnd::OnCaptureChanged(CWnd*)
{
    Default();
}

int CWnd::OnSetCursor(CWnd*, UINT, UINT)
{
    return static_cast<int>(Default());
}

int CWnd::OnMouseWheel(UINT, short, CPoint)
{
    return static_cast<int>(Default());
}

void CWnd::OnLButtonDblClk(UINT, CPoint)
{
    Default();
}

void CWnd::OnRButtonDown(UINT, CPoint)
{
    Default();
}

void CWnd::OnRButtonUp(UINT, CPoint)
{
    Default();
}

#pragma once

#include "Dc.h"
#include "Input.h"
#include "MessageMap.h"
#include "Object.h"
#include "WindowPaint.h"

// The framework's window. CreateEx makes a window whose messages come to this object, on the thread that made
// it, until the window ends; the object ends it with itself then, and must do so on that thread. Attach and
// FromHandle wrap a window without owning it or hearing its messages.
//
// A message goes to WindowProc, which looks for its handler in the message maps from the object's class up to
// CWnd and without one calls DefWindowProc, which calls the procedure of the window's class.
class KX_API CWnd : public CObject
{
    DECLARE_DYNAMIC(CWnd)

public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;
    // Ends the window if it is this object's own.
    ~CWnd() override;

    // ---- The window

    HWND GetSafeHwnd() const { return m_hWnd; }
    // 0 for null or when there is a handle already.
    int Attach(HWND hWnd);
    HWND Detach();
    // This thread's object whose window it is, else the thread's own wrapper, which lives at least as long as
    // the window; null for null.
    static CWnd* FromHandle(HWND hWnd);

    // Makes the window, of any class; arguments as for CreateWindowExA. The parent is null or the desktop's.
    // 1, or 0 when there is a window already or none can be made.
    int CreateEx(DWORD dwExStyle, const char* pszClass, const char* pszName, DWORD dwStyle, const RECT& rect,
                 CWnd* pParent, UINT nId, void* pParam = nullptr);
    // 0 without a window of this thread.
    virtual int DestroyWindow();

    // ---- What the platform's operations of these names do

    static CWnd* GetDesktopWindow() { return FromHandle(::GetDesktopWindow()); }
    int ShowWindow(int nCmd) { return ::ShowWindow(m_hWnd, nCmd); }
    int IsWindowVisible() const { return ::IsWindowVisible(m_hWnd); }
    int SetWindowPos(HWND hAfter, int x, int y, int cx, int cy, UINT nFlags)
    {
        return ::SetWindowPos(m_hWnd, hAfter, x, y, cx, cy, nFlags);
    }
    int AnimateWindow(DWORD dwTime, DWORD dwFlags) { return ::AnimateWindow(m_hWnd, dwTime, dwFlags); }
    // Left and top are 0. All zero without a window.
    void GetClientRect(RECT* pRect) const;
    void GetWindowRect(RECT* pRect) const;
    void SetWindowText(const char* psz) { ::SetWindowTextA(m_hWnd, psz); }

    void Invalidate(int bErase = 1) { ::InvalidateRect(m_hWnd, nullptr, bErase); }
    void InvalidateRect(const RECT* pRect, int bErase = 1) { ::InvalidateRect(m_hWnd, pRect, bErase); }
    void UpdateWindow() { ::UpdateWindow(m_hWnd); }
    CDC* GetDC() { return CDC::FromHandle(::GetDC(m_hWnd)); }
    int ReleaseDC(CDC* pDC) { return pDC ? ::ReleaseDC(m_hWnd, pDC->m_hDC) : 0; }

    UINT_PTR SetTimer(UINT_PTR nId, UINT nPeriod, TIMERPROC pfn)
    {
        return ::SetTimer(m_hWnd, nId, nPeriod, pfn);
    }
    int KillTimer(UINT_PTR nId) { return ::KillTimer(m_hWnd, nId); }
    int EnableWindow(int bEnable = 1) { return ::EnableWindow(m_hWnd, bEnable); }
    int IsWindowEnabled() const { return ::IsWindowEnabled(m_hWnd); }
    CWnd* SetCapture() { return FromHandle(::SetCapture(m_hWnd)); }
    CWnd* SetFocus() { return FromHandle(::SetFocus(m_hWnd)); }
    static CWnd* GetFocus() { return FromHandle(::GetFocus()); }

    LRESULT SendMessage(UINT nMsg, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendMessageA(m_hWnd, nMsg, wParam, lParam);
    }
    int PostMessage(UINT nMsg, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return ::PostMessage(m_hWnd, nMsg, wParam, lParam);
    }

    HWND m_hWnd = nullptr;

protected:
    // Looks for the message's handler, and without one calls DefWindowProc.
    virtual LRESULT WindowProc(UINT nMsg, WPARAM wParam, LPARAM lParam);
    virtual LRESULT DefWindowProc(UINT nMsg, WPARAM wParam, LPARAM lParam);
    // The window's last sight of this object, which may delete itself here.
    virtual void PostNcDestroy() {}
    // The default handling of the message that is being handled.
    LRESULT Default();

    // Each does what Default does.
    int OnCreate(CREATESTRUCTA* pCreate);
    void OnDestroy();
    void OnClose();
    void OnMove(int x, int y);
    void OnSize(UINT nType, int cx, int cy);
    void OnSetFocus(CWnd* pOldWnd);
    void OnKillFocus(CWnd* pNewWnd);
    void OnPaint();
    int OnEraseBkgnd(CDC* pDC);
    void OnShowWindow(int bShow, UINT nStatus);
    void OnTimer(UINT nId);
    void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags);
    void OnChar(UINT nChar, UINT nRepeat, UINT nFlags);
    void OnKeyUp(UINT nKey, UINT nRepeat, UINT nFlags);
    void OnSysKeyDown(UINT nKey, UINT nRepeat, UINT nFlags);
    void OnSysChar(UINT nChar, UINT nRepeat, UINT nFlags);
    void OnEnable(int bEnable);
    void OnCaptureChanged(CWnd* pWnd);
    int OnSetCursor(CWnd* pWnd, UINT nHitTest, UINT nMessage);
    int OnMouseWheel(UINT nFlags, short nTurn, CPoint point);
    void OnMouseMove(UINT nFlags, CPoint point);
    void OnLButtonDown(UINT nFlags, CPoint point);
    void OnLButtonUp(UINT nFlags, CPoint point);
    void OnLButtonDblClk(UINT nFlags, CPoint point);
    void OnRButtonDown(UINT nFlags, CPoint point);
    void OnRButtonUp(UINT nFlags, CPoint point);

    // The class's handlers.
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;

private:
    friend LRESULT AfxWndProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
    void LoseWindow() noexcept;

    bool m_bOwnsWindow = false;
};

// The surface of a WM_PAINT: BeginPaint in its constructor, EndPaint in its destructor.
class KX_API CPaintDC : public CDC
{
public:
    // Begins the paint; the end of the object ends it.
    explicit CPaintDC(CWnd* pWnd);
    ~CPaintDC() override;

    // The record that BeginPaint gave.
    PAINTSTRUCT m_ps;

private:
    HWND m_hWnd;
};

// The surface of a window's client area, as long as the object lives.
class KX_API CClientDC : public CDC
{
public:
    // The surface of a window's client area, given back at the end.
    explicit CClientDC(CWnd* pWnd);
    ~CClientDC() override;

private:
    HWND m_hWnd;
};

// The name of a window class with the default handling, for CreateEx: the same for the same arguments, made
// known at the first call. Without a cursor it is the arrow. The name lives as long as the process;
// null for lack of room.
KX_API const char* AfxRegisterWndClass(UINT nStyle, HCURSOR hCursor = nullptr, HBRUSH hBackground = nullptr,
                                       HICON hIcon = nullptr);

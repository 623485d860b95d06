#pragma once

// Message maps: which member function of a class derived from CWnd handles which message.
//
//     class CMyWnd : public CWnd
//     {
//         DECLARE_MESSAGE_MAP()
//         void OnPaint();
//     };
//     BEGIN_MESSAGE_MAP(CMyWnd, CWnd)
//         ON_WM_PAINT()
//     END_MESSAGE_MAP()
//
// A handler has the name and the arguments of CWnd's of that name.

#include "Types.h"

class CWnd;

// A message and its handler.
struct AFX_MSGMAP_ENTRY
{
    // The message.
    UINT nMessage;
    // Takes the message apart, calls the handler and gives what the message gives.
    LRESULT (*pfnCall)(CWnd& wnd, WPARAM wParam, LPARAM lParam);
};

// A class's handlers, and its base's.
struct AFX_MSGMAP
{
    const AFX_MSGMAP* (*pfnGetBaseMap)(); // null for the last
    const AFX_MSGMAP_ENTRY* lpEntries;    // in the table's order, up to one without a function
};

// In the class: that it has handlers of its own.
#define DECLARE_MESSAGE_MAP()                                                                                \
protected:                                                                                                   \
    static const AFX_MSGMAP* GetThisMessageMap();                                                            \
    const AFX_MSGMAP* GetMessageMap() const override;

// In its source: the class and its base; then its entries, then END_MESSAGE_MAP.
#define BEGIN_MESSAGE_MAP(the_class, base_class)                                                             \
    const AFX_MSGMAP* the_class::GetMessageMap() const                                                       \
    {                                                                                                        \
        return GetThisMessageMap();                                                                          \
    }                                                                                                        \
    const AFX_MSGMAP* the_class::GetThisMessageMap()                                                         \
    {                                                                                                        \
        using ThisClass = the_class;                                                                         \
        static constexpr auto pfnBase = [] { return base_class::GetThisMessageMap(); };                      \
        static const AFX_MSGMAP_ENTRY entries[] = {

// Ends the table.
#define END_MESSAGE_MAP()                                                                                    \
    {                                                                                                        \
        0, nullptr                                                                                           \
    }                                                                                                        \
    }                                                                                                        \
    ;                                                                                                        \
    static const AFX_MSGMAP map{pfnBase, entries};                                                           \
    return &map;                                                                                             \
    }

// An entry: `call` is an expression of the window `wnd`, of `wParam` and of `lParam`.
#define KX_ON_MESSAGE(message, call)                                                                         \
    {message, [](CWnd& base, [[maybe_unused]] WPARAM wParam, [[maybe_unused]] LPARAM lParam) -> LRESULT {    \
         [[maybe_unused]] auto& wnd = static_cast<ThisClass&>(base);                                         \
         return call;                                                                                        \
     }},

// A message by number, whose handler gets its two numbers; and those with handlers of their own.
#define ON_MESSAGE(message, function) KX_ON_MESSAGE(message, wnd.function(wParam, lParam))
#define ON_WM_CREATE() KX_ON_MESSAGE(WM_CREATE, wnd.OnCreate(reinterpret_cast<CREATESTRUCTA*>(lParam)))
#define ON_WM_DESTROY() KX_ON_MESSAGE(WM_DESTROY, (wnd.OnDestroy(), 0))
#define ON_WM_CLOSE() KX_ON_MESSAGE(WM_CLOSE, (wnd.OnClose(), 0))
#define ON_WM_MOVE() KX_ON_MESSAGE(WM_MOVE, (wnd.OnMove(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)), 0))
#define ON_WM_SIZE()                                                                                         \
    KX_ON_MESSAGE(WM_SIZE, (wnd.OnSize(static_cast<UINT>(wParam), static_cast<WORD>(lParam),                 \
                                       static_cast<WORD>(lParam >> 16)),                                     \
                            0))
#define ON_WM_SETFOCUS()                                                                                     \
    KX_ON_MESSAGE(WM_SETFOCUS, (wnd.OnSetFocus(CWnd::FromHandle(reinterpret_cast<HWND>(wParam))), 0))
#define ON_WM_KILLFOCUS()                                                                                    \
    KX_ON_MESSAGE(WM_KILLFOCUS, (wnd.OnKillFocus(CWnd::FromHandle(reinterpret_cast<HWND>(wParam))), 0))
#define ON_WM_PAINT() KX_ON_MESSAGE(WM_PAINT, (wnd.OnPaint(), 0))
#define ON_WM_ERASEBKGND()                                                                                   \
    KX_ON_MESSAGE(WM_ERASEBKGND, wnd.OnEraseBkgnd(CDC::FromHandle(reinterpret_cast<HDC>(wParam))))
#define ON_WM_SHOWWINDOW()                                                                                   \
    KX_ON_MESSAGE(WM_SHOWWINDOW, (wnd.OnShowWindow(static_cast<int>(wParam), static_cast<UINT>(lParam)), 0))
#define ON_WM_TIMER() KX_ON_MESSAGE(WM_TIMER, (wnd.OnTimer(static_cast<UINT>(wParam)), 0))
// How often it repeats, and the high 16 bits of the LPARAM.
#define KX_KEY(function)                                                                                     \
    (wnd.function(static_cast<UINT>(wParam), static_cast<WORD>(lParam), static_cast<WORD>(lParam >> 16)), 0)
// Messages of keys and of the mouse.
#define ON_WM_KEYDOWN() KX_ON_MESSAGE(WM_KEYDOWN, KX_KEY(OnKeyDown))
#define ON_WM_KEYUP() KX_ON_MESSAGE(WM_KEYUP, KX_KEY(OnKeyUp))
#define ON_WM_SYSKEYDOWN() KX_ON_MESSAGE(WM_SYSKEYDOWN, KX_KEY(OnSysKeyDown))
#define ON_WM_SYSCHAR() KX_ON_MESSAGE(WM_SYSCHAR, KX_KEY(OnSysChar))
#define ON_WM_ENABLE() KX_ON_MESSAGE(WM_ENABLE, (wnd.OnEnable(wParam != 0), 0))
#define ON_WM_CAPTURECHANGED()                                                                               \
    KX_ON_MESSAGE(WM_CAPTURECHANGED,                                                                         \
                  (wnd.OnCaptureChanged(CWnd::FromHandle(reinterpret_cast<HWND>(lParam))), 0))
#define ON_WM_SETCURSOR()                                                                                    \
    KX_ON_MESSAGE(WM_SETCURSOR, wnd.OnSetCursor(CWnd::FromHandle(reinterpret_cast<HWND>(wParam)),            \
                                                static_cast<WORD>(lParam), static_cast<WORD>(lParam >> 16)))
#define ON_WM_MOUSEWHEEL()                                                                                   \
    KX_ON_MESSAGE(WM_MOUSEWHEEL,                                                                             \
                  wnd.OnMouseWheel(static_cast<WORD>(wParam), static_cast<short>(wParam >> 16),              \
                                   CPoint(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam))))
#define ON_WM_CHAR() KX_ON_MESSAGE(WM_CHAR, KX_KEY(OnChar))
#define KX_ON_MOUSE(message, function)                                                                       \
    KX_ON_MESSAGE(                                                                                           \
        message,                                                                                             \
        (wnd.function(static_cast<UINT>(wParam), CPoint(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam))), 0))
#define ON_WM_MOUSEMOVE() KX_ON_MOUSE(WM_MOUSEMOVE, OnMouseMove)
#define ON_WM_LBUTTONDOWN() KX_ON_MOUSE(WM_LBUTTONDOWN, OnLButtonDown)
#define ON_WM_LBUTTONUP() KX_ON_MOUSE(WM_LBUTTONUP, OnLButtonUp)
#define ON_WM_LBUTTONDBLCLK() KX_ON_MOUSE(WM_LBUTTONDBLCLK, OnLButtonDblClk)
#define ON_WM_RBUTTONDOWN() KX_ON_MOUSE(WM_RBUTTONDOWN, OnRButtonDown)
#define ON_WM_RBUTTONUP() KX_ON_MOUSE(WM_RBUTTONUP, OnRButtonUp)

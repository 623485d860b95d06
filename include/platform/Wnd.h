#pragma once

#include "Object.h"
#include "Window.h"

// The framework's wrapper of a window's handle. It doesn't own the window.
class KX_API CWnd : public CObject
{
    DECLARE_DYNAMIC(CWnd)

public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    HWND GetSafeHwnd() const { return m_hWnd; }
    // 0 for null or when there is a handle already.
    int Attach(HWND hWnd);
    HWND Detach();
    // The thread's own wrapper of a handle; it lives at least as long as the window.
    static CWnd* FromHandle(HWND hWnd);

    // Left and top are 0. All zero without a window.
    void GetClientRect(RECT* pRect) const;
    void GetWindowRect(RECT* pRect) const;

    HWND m_hWnd = nullptr;
};

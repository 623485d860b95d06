#pragma once

#include "KXExport.h"
#include "KXMemDC.h"
#include "platform/Wnd.h"

// A window without a background of its own: at every paint it takes a copy of what the screen shows in its
// place and draws that, then an outline and the call to begin a dictation. The client makes it with
// CWnd::CreateEx, of any style and size; one that is resized while it is visible keeps the old size of the
// copy until it is shown again. Used by the thread that made it.
class KX_API CKXTransparentWnd : public CWnd
{
    DECLARE_DYNAMIC(CKXTransparentWnd)

public:
    CKXTransparentWnd() = default;
    // Ends the window.
    ~CKXTransparentWnd() override;

    // The message map calls these for the window's messages.
    void OnPaint();
    void OnShowWindow(int bShow, unsigned int nStatus);

    DECLARE_MESSAGE_MAP()

private:
    CKXMemDC m_memDC; // the copy; empty before the first show
};

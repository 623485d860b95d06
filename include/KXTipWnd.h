#pragma once

#include "KXExport.h"
#include "platform/String.h"
#include "platform/Wnd.h"

// A small notice: a yellow box of 200 by 100 pixels in the middle of the screen with a line of blue text, in
// the face that the current language names by "IDS_DEF_FONT". It fades in within three seconds, stays for a
// time and fades out within three seconds. It never keeps the focus. Made once, shown as often as one likes;
// all calls by the thread that made it, which runs a message loop.
class KX_API CKXTipWnd : public CWnd
{
    DECLARE_DYNAMIC(CKXTipWnd)

public:
    CKXTipWnd() = default;
    // Ends the window.
    ~CKXTipWnd() override;

    // Makes the window, hidden: non-zero, or 0 if that can't be or it is there already.
    int CreateTipWnd();
    // Shows the text for that many milliseconds of the clock behind the fade-in, at whose end it returns;
    // with 0 it begins to fade out at the next tenth of a second. A tip that is up is replaced. Without a
    // window nothing is seen.
    void ShowTipWnd(const CString& strText, unsigned long dwShowTime);

    // The message map calls these for the tip's messages.
    void OnPaint();
    int OnEraseBkgnd(CDC* pDC);
    void OnShowWindow(int bShow, unsigned int nStatus);
    void OnTimer(unsigned int nIDEvent);
    void OnDestroy();
    void OnSetFocus(CWnd* pOldWnd);

    DECLARE_MESSAGE_MAP()

private:
    void DrawTip(CDC& dc);

    CString m_strTipText;
    unsigned long m_dwShowTime = 0;
    unsigned long m_dwStartTick = 0; // when the fade-in had ended
    UINT_PTR m_nTimerId = 0;         // 0: none runs
};

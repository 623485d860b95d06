#include "KXTransparentWnd.h"

#include "platform/String.h"

namespace {

constexpr COLORREF kFill = RGB(255, 255, 255);

// "开始听写！" in code page 936.
constexpr char kNotice[] = "\xBF\xAA\xCA\xBC\xCC\xFD\xD0\xB4\xA3\xA1";

} // namespace

IMPLEMENT_DYNAMIC(CKXTransparentWnd, CWnd)

BEGIN_MESSAGE_MAP(CKXTransparentWnd, CWnd)
ON_WM_PAINT()
ON_WM_SHOWWINDOW()
END_MESSAGE_MAP()

CKXTransparentWnd::~CKXTransparentWnd() = default;

void CKXTransparentWnd::OnShowWindow(int bShow, unsigned int nStatus)
{
    if (bShow) {
        CClientDC desktop(CWnd::FromHandle(::GetDesktopWindow()));
        CRect rcWindow;
        GetWindowRect(&rcWindow);
        if (desktop.GetSafeHdc()) m_memDC.Create(&desktop, rcWindow, kFill);
    }
    CWnd::OnShowWindow(bShow, nStatus);
}

void CKXTransparentWnd::OnPaint()
{
    CPaintDC dc(this);
    {
        CClientDC desktop(CWnd::FromHandle(::GetDesktopWindow()));
        CRect rcWindow;
        GetWindowRect(&rcWindow);
        m_memDC.BitBlt(0, 0, rcWindow.Width(), rcWindow.Height(), &desktop, rcWindow.left, rcWindow.top,
                       SRCCOPY);
    }
    CRect rcClient;
    GetClientRect(&rcClient);
    dc.BitBlt(rcClient.left, rcClient.top, rcClient.Width(), rcClient.Height(), &m_memDC, 0, 0, SRCCOPY);

    CGdiObject* pOldBrush = dc.SelectStockObject(NULL_BRUSH);
    dc.Rectangle(&rcClient);
    dc.DrawText(kNotice, &rcClient, DT_CENTER | DT_VCENTER);
    dc.SelectObject(pOldBrush);
}

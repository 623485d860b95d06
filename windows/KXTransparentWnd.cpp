#include "KXTransparentWnd.h"

#include "platform/String.h"

namespace {

constexpr COLORREF kFill = RGB(255, 255, 255);

// "开始听写！" in code page 936.
constexpr char kNotice[] = "\xBF\xAA\xCA\xBC\xCC\xFD\xD0\xB4\xA3\xA1";

// The desktop's surface, as long as the object lives.
class DesktopDC
{
public:
    DesktopDC()
        : m_pDesktop(CWnd::FromHandle(::GetDesktopWindow())),
          m_pDC(CDC::FromHandle(::GetDC(m_pDesktop->m_hWnd)))
    {
    }
    DesktopDC(const DesktopDC&) = delete;
    DesktopDC& operator=(const DesktopDC&) = delete;
    ~DesktopDC() { m_pDesktop->ReleaseDC(m_pDC); }

    CDC* Get() const { return m_pDC; }

private:
    CWnd* m_pDesktop;
    CDC* m_pDC;
};

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
        const DesktopDC desktop;
        CRect rcWindow;
        GetWindowRect(&rcWindow);
        if (desktop.Get()) m_memDC.Create(desktop.Get(), rcWindow, kFill);
    }
    CWnd::OnShowWindow(bShow, nStatus);
}

void CKXTransparentWnd::OnPaint()
{
    CPaintDC dc(this);
    {
        const DesktopDC desktop;
        CRect rcWindow;
        GetWindowRect(&rcWindow);
        m_memDC.BitBlt(0, 0, rcWindow.Width(), rcWindow.Height(), desktop.Get(), rcWindow.left, rcWindow.top,
                       SRCCOPY);
    }
    CRect rcClient;
    GetClientRect(&rcClient);
    dc.BitBlt(rcClient.left, rcClient.top, rcClient.Width(), rcClient.Height(), &m_memDC, 0, 0, SRCCOPY);

    CGdiObject* pOldBrush = dc.SelectStockObject(NULL_BRUSH);
    dc.Rectangle(&rcClient);
    dc.DrawText(kNotice, sizeof kNotice - 1, &rcClient, DT_CENTER | DT_VCENTER);
    dc.SelectObject(pOldBrush);
}

#include "KXTipWnd.h"

#include "KXLanResManager.h"
#include "platform/Clock.h"

#include <utility>

namespace {

constexpr int kWidth = 200;
constexpr int kHeight = 100;
constexpr UINT kTimerId = 1;
constexpr UINT kTimerPeriod = 100;
constexpr DWORD kFadeTime = 3000;
constexpr COLORREF kBackground = RGB(255, 255, 0);
constexpr COLORREF kTextColor = RGB(0, 0, 255);
constexpr int kFontSize = 100; // tenths of a point

// In the current language; without one the key itself.
CString DefaultFace()
{
    const CString strKey = "IDS_DEF_FONT";
    auto* pLanguage = CKXLanResManager::GetSingletonPtr();
    return pLanguage ? pLanguage->GetString(strKey) : strKey;
}

} // namespace

IMPLEMENT_DYNAMIC(CKXTipWnd, CWnd)

BEGIN_MESSAGE_MAP(CKXTipWnd, CWnd)
ON_WM_PAINT()
ON_WM_SHOWWINDOW()
ON_WM_ERASEBKGND()
ON_WM_TIMER()
ON_WM_DESTROY()
ON_WM_SETFOCUS()
END_MESSAGE_MAP()

CKXTipWnd::~CKXTipWnd() = default;

int CKXTipWnd::CreateTipWnd()
{
    CWnd* pDesktop = CWnd::FromHandle(::GetDesktopWindow());
    CRect rcDesktop;
    pDesktop->GetClientRect(&rcDesktop);
    const int x = (rcDesktop.Width() - kWidth) / 2;
    const int y = (rcDesktop.Height() - kHeight) / 2;
    const char* pszClass = AfxRegisterWndClass(CS_VREDRAW | CS_HREDRAW);
    return CreateEx(0, pszClass, nullptr, WS_POPUP, CRect(x, y, x + kWidth, y + kHeight), pDesktop, 0);
}

void CKXTipWnd::ShowTipWnd(const CString& strText, unsigned long dwShowTime)
{
    m_strTipText = strText;
    m_dwShowTime = dwShowTime;
    SetWindowText(strText); // what a screen reader reads out
    SetWindowPos(HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
    AnimateWindow(kFadeTime, AW_BLEND);
    if (m_nTimerId == 0) m_nTimerId = SetTimer(kTimerId, kTimerPeriod, nullptr);
    m_dwStartTick = GetTickCount();
}

void CKXTipWnd::OnTimer(unsigned int nIDEvent)
{
    // The tick count wraps at 32 bits.
    if (nIDEvent == kTimerId && GetTickCount() - static_cast<DWORD>(m_dwStartTick) >= m_dwShowTime) {
        KillTimer(m_nTimerId);
        m_nTimerId = 0;
        AnimateWindow(kFadeTime, AW_BLEND | AW_HIDE);
    }
    CWnd::OnTimer(nIDEvent);
}

void CKXTipWnd::DrawTip(CDC& dc)
{
    CRect rcClient;
    GetClientRect(&rcClient);
    CFont font;
    font.CreatePointFont(kFontSize, DefaultFace(), nullptr);
    CFont* pOldFont = dc.SelectObject(&font);
    const COLORREF clrOld = dc.SetTextColor(kTextColor);
    dc.SetBkMode(TRANSPARENT);
    dc.DrawText(m_strTipText, m_strTipText.GetLength(), &rcClient, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    dc.SetTextColor(clrOld);
    dc.SelectObject(pOldFont);
}

int CKXTipWnd::OnEraseBkgnd(CDC* pDC)
{
    CRect rcClient;
    GetClientRect(&rcClient);
    pDC->FillSolidRect(&rcClient, kBackground);
    DrawTip(*pDC);
    return 1;
}

void CKXTipWnd::OnPaint()
{
    CPaintDC dc(this);
    DrawTip(dc);
}

void CKXTipWnd::OnShowWindow(int bShow, unsigned int nStatus)
{
    CWnd::OnShowWindow(bShow, nStatus);
}

void CKXTipWnd::OnSetFocus(CWnd* pOldWnd)
{
    if (pOldWnd) pOldWnd->SetFocus();
}

void CKXTipWnd::OnDestroy()
{
    if (const auto nTimerId = std::exchange(m_nTimerId, 0)) KillTimer(nTimerId);
    CWnd::OnDestroy();
}

#include "tools/kx/SkinSheet.h"

#include "skin/SkinTable.h"

#include <KXText.h>
#include <algorithm>
#include <cstring>

namespace kx::tool {

namespace {

constexpr int kMargin = 32;
constexpr int kGap = 14;
constexpr COLORREF kPaper = RGB(250, 250, 251);
constexpr COLORREF kInk = RGB(38, 42, 48);
constexpr COLORREF kFaint = RGB(120, 126, 134);
constexpr COLORREF kLine = RGB(222, 225, 229);
constexpr COLORREF kKey = RGB(255, 0, 255);

CString NameOf(const CString& strDir)
{
    const CString strWithout = strDir.Left(strDir.GetLength() - 1);
    return strWithout.Mid(strWithout.ReverseFind('\\') + 1);
}

COLORREF ColorOf(const CString& strIni, const skin::SkinKey& key)
{
    std::vector<int> numbers;
    CKXNum::ApartNums(key.pszDefault, numbers);
    const COLORREF clr = RGB(static_cast<unsigned>(numbers[0]), static_cast<unsigned>(numbers[1]),
                             static_cast<unsigned>(numbers[2]));
    return static_cast<COLORREF>(CKXIniDataMgr::GetRGB(strIni, key.pszSection, key.pszKey, clr));
}

} // namespace

SkinSheet::SkinSheet(const CString& strDir)
    : m_strDir(strDir), m_strIni(strDir + "Skin.ini"), m_strName(NameOf(strDir))
{
    m_wnd.LoadRes(strDir + "Common\\Window\\", m_strIni);
    m_list.LoadRes(strDir + "Common\\IMList\\", m_strIni);
    m_other.LoadRes(strDir + "Common\\Others\\", m_strIni);
    constexpr char szFace[] = "DejaVu Sans";
    m_font.CreatePointFont(90, szFace);
    m_small.CreatePointFont(75, szFace);
    m_title.CreatePointFont(180, szFace);
    LOGFONTA log{};
    m_font.GetLogFont(&log);
    log.lfWeight = FW_BOLD;
    m_bold.CreateFontIndirectA(&log);
    m_surface.Create(kWidth, 1);
    Draw();
    m_bMeasure = false;
    m_surface.Create(kWidth, m_nHeight);
    Draw();
}

void SkinSheet::Draw()
{
    CDC& dc = m_surface.GetDC();
    dc.FillSolidRect(0, 0, kWidth, std::max(m_nHeight, 1), kPaper);
    dc.SetBkMode(TRANSPARENT);
    CFont* const pOld = dc.SelectObject(&m_title);
    m_y = 24;
    Text(CRect(kMargin, m_y, kWidth - kMargin, m_y + 34), m_strName, kInk, DT_LEFT);
    m_y += 44;
    Frames();
    for (const auto& [pszHeading, pszDir] :
         {std::pair("Frame and background, as the files are", "Common\\Window\\"),
          {"Buttons, tabs and headers", "Common\\Button\\"},
          {"Lists", "Common\\IMList\\"},
          {"Other controls", "Common\\Others\\"}}) {
        Heading(pszHeading);
        Strips(pszDir);
    }
    Heading("Icons and pictures");
    Pictures();
    Heading("Colours");
    Colors();
    Heading("Text");
    Sample();
    dc.SelectObject(pOld);
    m_nHeight = m_y + kMargin;
}

void SkinSheet::Heading(const char* pszText)
{
    CDC& dc = m_surface.GetDC();
    m_y += 22;
    dc.SelectObject(&m_bold);
    Text(CRect(kMargin, m_y, kWidth - kMargin, m_y + 20), pszText, kInk, DT_LEFT);
    dc.FillSolidRect(kMargin, m_y + 24, kWidth - 2 * kMargin, 1, kLine);
    m_y += 36;
    m_x = kMargin;
    m_nRow = 0;
}

void SkinSheet::Text(const CRect& rc, const CString& str, COLORREF clr, UINT nFormat)
{
    CDC& dc = m_surface.GetDC();
    CRect rcText = rc;
    dc.SetTextColor(clr);
    dc.SetBkMode(TRANSPARENT);
    dc.DrawText(str, rcText, nFormat | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
}

void SkinSheet::Label(const CRect& rc, const CString& str, UINT nFormat)
{
    m_surface.GetDC().SelectObject(&m_small);
    Text(rc, str, kFaint, nFormat);
}

// At two sizes, in front and behind.
void SkinSheet::Frames()
{
    const CSize sizes[] = {CSize(290, 190), CSize(160, 110)};
    int x = kMargin;
    for (const bool bFront : {true, false})
        for (const CSize& size : sizes) {
            Frame(CRect(x, m_y, x + size.cx, m_y + size.cy), bFront);
            CString strText;
            strText.Format("%s, %d by %d", bFront ? "in front" : "behind", size.cx, size.cy);
            Label(CRect(x, m_y + size.cy + 4, x + size.cx, m_y + size.cy + 20), strText);
            x += size.cx + 12;
        }
    m_y += sizes[0].cy + 24;
}

void SkinSheet::Frame(const CRect& rc, bool bFront)
{
    CDC* const pDC = &m_surface.GetDC();
    const int nState = bFront ? 0 : 1;
    const int yTitle = rc.top + m_wnd.m_nTitleHeight;
    const int yBottom = rc.bottom - m_wnd.m_nBottomHeight;
    const CRect rcClient(rc.left + m_wnd.m_nLeftWidth, yTitle, rc.right - m_wnd.m_nRightWidth, yBottom);
    CRgn rgn;
    rgn.CreateRectRgn(rc.left, rc.top, rc.right, rc.bottom);
    pDC->SelectClipRgn(&rgn);
    if (!rcClient.IsRectEmpty()) Background(rcClient);
    m_wnd.m_bmpLeft.DrawFill(pDC, CRect(rc.left, yTitle, rcClient.left, yBottom), nState);
    m_wnd.m_bmpRight.DrawFill(pDC, CRect(rcClient.right, yTitle, rc.right, yBottom), nState);
    m_wnd.m_bmpTitle.TransparentDrawFill(pDC, CRect(rc.left, rc.top, rc.right, yTitle), kKey, nState);
    m_wnd.m_bmpBottom.TransparentDrawFill(pDC, CRect(rc.left, yBottom, rc.right, rc.bottom), kKey, nState);
    if (m_list.m_hNormalIcon)
        pDC->DrawIcon(rc.left + m_wnd.m_nSysMenuLeft, rc.top + m_wnd.m_nSysMenuTop, m_list.m_hNormalIcon);
    const int xButtons = CaptionButtons(rc, bFront);
    pDC->SelectObject(&m_bold);
    Text(CRect(rc.left + m_wnd.m_nTitleTextLeft, rc.top + m_wnd.m_nTitleTextTop, xButtons - 4, yTitle),
         m_strName, m_wnd.m_clrTitle, DT_LEFT);
    pDC->SelectObject(&m_font);
    if (rcClient.Height() > 40)
        Text(CRect(rcClient.left + 10, rcClient.top + 6, rcClient.right, rcClient.top + 26), "Text on it",
             m_wnd.m_clrText, DT_LEFT);
    pDC->SelectClipRgn(nullptr);
}

void SkinSheet::Background(const CRect& rc)
{
    CDC* const pDC = &m_surface.GetDC();
    switch (m_wnd.m_nBkgType) {
    case 1:
        pDC->FillSolidRect(rc, m_wnd.m_clrBkg);
        break;
    case 2:
        m_wnd.m_bmpBkg.Pave(pDC, rc, 0);
        break;
    case 3:
        m_wnd.m_bmpBkgMid.Pave(pDC, rc, 0);
        m_wnd.m_bmpBkgBtm.DrawFill(pDC,
                                   CRect(rc.left, rc.bottom - m_wnd.m_nBkgBtmHeight, rc.right, rc.bottom), 0);
        m_wnd.m_bmpBkgTop.DrawFill(pDC, rc, 0);
        break;
    default:
        pDC->FillSolidRect(rc, m_wnd.m_clrBack);
    }
}

// From the right: in a row with equal spaces, or each at its own offset. Where the last one begins.
int SkinSheet::CaptionButtons(const CRect& rc, bool bFront)
{
    struct
    {
        CKXBitmap& bitmap;
        int cx, nOffset, nTop;
    } const buttons[] = {
        {m_wnd.m_bmpCloseBtn, m_wnd.m_sizeCloseBtn.cx, m_wnd.m_nCloseBtnOffset, m_wnd.m_nCloseBtnTop},
        {m_wnd.m_bmpMaxBtn, m_wnd.m_sizeMaxBtn.cx, m_wnd.m_nMaxBtnOffset, m_wnd.m_nMaxBtnTop},
        {m_wnd.m_bmpMinBtn, m_wnd.m_sizeMinBtn.cx, m_wnd.m_nMinBtnOffset, m_wnd.m_nMinBtnTop},
    };
    int xNext = rc.right - m_wnd.m_nCloseBtnOffset;
    int xFirst = rc.right;
    for (const auto& button : buttons) {
        const int x = (m_wnd.m_bAutoAlign ? xNext : rc.right - button.nOffset) - button.cx;
        button.bitmap.TransparentDraw(&m_surface.GetDC(), x, rc.top + button.nTop, kKey, bFront ? 0 : 4);
        xNext = x - m_wnd.m_nBtnSpace;
        xFirst = std::min(xFirst, x);
    }
    return xFirst;
}

void SkinSheet::Strips(const char* pszDir)
{
    for (const skin::SkinFile& file : skin::kFiles)
        if (file.kind == skin::FileKind::Bitmap &&
            std::strncmp(file.pszPath, pszDir, std::strlen(pszDir)) == 0)
            Strip(file);
    Advance(m_nRow);
    m_x = kMargin;
    m_nRow = 0;
}

// A state's place on the sheet, however large it is.
CSize SkinSheet::Fitting(CSize size) const
{
    return CSize(std::min<int>(size.cx, kWidth - 2 * kMargin), std::min<int>(size.cy, 200));
}

void SkinSheet::Advance(int nHeight)
{
    if (nHeight > 0) m_y += nHeight + kGap;
}

// One file: its name, and each state above its number. Strips stand side by side while there is room.
void SkinSheet::Strip(const skin::SkinFile& file)
{
    CKXBitmap bitmap;
    const bool bThere = bitmap.LoadBitmapA(m_strDir + file.pszPath) != 0;
    if (!bThere && file.pszBackground) return; // of another type of background
    bitmap.SetMultiState(file.nStates, file.bHorz);
    const CRect rcState = bThere ? bitmap.GetSrcImageRect() : CRect();
    const CSize size = Fitting(CSize(std::max(rcState.Width(), 1), std::max(rcState.Height(), 1)));
    const int cxCell = std::max(size.cx, 18) + 6;
    const int nPerRow = std::clamp((kWidth - 2 * kMargin) / cxCell, 1, file.nStates);
    const int nRows = (file.nStates + nPerRow - 1) / nPerRow;
    const int cxStrip = std::max(nPerRow * cxCell, 150);
    const int cyStrip = 18 + nRows * (size.cy + 18);
    if (m_x > kMargin && m_x + cxStrip > kWidth - kMargin) {
        Advance(m_nRow);
        m_x = kMargin;
        m_nRow = 0;
    }
    CDC& dc = m_surface.GetDC();
    const CString strPath = file.pszPath;
    Label(CRect(m_x, m_y, m_x + cxStrip, m_y + 16),
          strPath.Mid(strPath.ReverseFind('\\') + 1) + (bThere ? "" : ": missing"));
    for (int n = 0; bThere && n < file.nStates; ++n) {
        const int x = m_x + n % nPerRow * cxCell;
        const int y = m_y + 18 + n / nPerRow * (size.cy + 18);
        CRgn rgn;
        rgn.CreateRectRgn(x, y, x + size.cx, y + size.cy);
        dc.SelectClipRgn(&rgn);
        bitmap.TransparentDraw(&dc, x, y, kKey, n);
        dc.SelectClipRgn(nullptr);
        CString strNumber;
        strNumber.Format("%d", n);
        if (file.nStates > 1)
            Label(CRect(x, y + size.cy, x + size.cx, y + size.cy + 16), strNumber, DT_CENTER);
    }
    m_x += cxStrip + 18;
    m_nRow = std::max(m_nRow, cyStrip);
}

void SkinSheet::Pictures()
{
    CDC& dc = m_surface.GetDC();
    int x = kMargin;
    for (const auto& [pszName, hIcon] :
         {std::pair("Normal.ico", m_list.m_hNormalIcon), {"Expand.ico", m_list.m_hExpandIcon}}) {
        Label(CRect(x, m_y, x + 150, m_y + 16), pszName);
        if (hIcon) dc.DrawIcon(x, m_y + 20, hIcon);
        x += 168;
    }
    for (const auto& [pszName, pImage] : {std::pair("FileSend.png", &m_other.m_imgFileSend),
                                          {"FileReceive.png", &m_other.m_imgFileReceive}}) {
        const CSize size = pImage->GetImageSize();
        const int cx = std::min<int>(size.cx, 150), cy = std::min<int>(size.cy, 60);
        Label(CRect(x, m_y, x + 150, m_y + 16), pszName);
        if (cx > 0 && cy > 0) pImage->Render(&dc, CRect(x, m_y + 20, x + cx, m_y + 20 + cy));
        x += 168;
    }
    m_y += 84;
}

void SkinSheet::Colors()
{
    constexpr int kColumns = 4, cxCell = (kWidth - 2 * kMargin) / kColumns, cyCell = 36;
    CDC& dc = m_surface.GetDC();
    int n = 0;
    for (const skin::SkinKey& key : skin::kKeys) {
        if (key.kind != skin::ValueKind::Color) continue;
        const int x = kMargin + n % kColumns * cxCell;
        const int y = m_y + n / kColumns * cyCell;
        const COLORREF clr = ColorOf(m_strIni, key);
        dc.FillSolidRect(x, y, 44, 28, kLine);
        dc.FillSolidRect(x + 1, y + 1, 42, 26, clr);
        dc.SelectObject(&m_font);
        Text(CRect(x + 52, y - 2, x + cxCell, y + 14), key.pszKey, kInk, DT_LEFT);
        CString strValue;
        strValue.Format("%d, %d, %d%s", GetRValue(clr), GetGValue(clr), GetBValue(clr),
                        std::strcmp(key.pszSection, "Background") == 0 ? "  (Background)" : "");
        Label(CRect(x + 52, y + 13, x + cxCell, y + 29), strValue);
        ++n;
    }
    m_y += (n + kColumns - 1) / kColumns * cyCell;
}

void SkinSheet::Sample()
{
    CDC& dc = m_surface.GetDC();
    const CRect rc(kMargin, m_y, kWidth - kMargin, m_y + 60);
    dc.FillSolidRect(rc, kLine);
    dc.FillSolidRect(rc.left + 1, rc.top + 1, rc.Width() - 2, rc.Height() - 2, m_wnd.m_clrBack);
    dc.SelectObject(&m_font);
    Text(CRect(rc.left + 14, rc.top + 8, rc.right, rc.top + 28),
         "TextColor on BackColor: The quick brown fox.", m_wnd.m_clrText, DT_LEFT);
    Text(CRect(rc.left + 14, rc.top + 30, rc.right, rc.top + 50), KXText::FromUtf8("开始听写！你好，世界。"),
         m_wnd.m_clrText, DT_LEFT);
    m_y += 60;
}

} // namespace kx::tool

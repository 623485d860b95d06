// The pictures of the page about skins, as the sample client draws what they show.

#include "Canvas.h"
#include "examples/client/SkinFrame.h"
#include "skin/SkinTable.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <platform/FileSystem.h>
#include <string>

using kx::skin::FileKind;
using kx::skin::SkinFile;
using pictures::Canvas;
using pictures::kGround;
using pictures::kInk;
using pictures::kKey;
using pictures::kMark;
using pictures::kPaper;
using pictures::strSkin;
using pictures::strTarget;

namespace {

constexpr int kMargin = 8, kGap = 6, kLabel = 14;
constexpr int kWidest = 300; // of a row of states

CString IniPath()
{
    return strSkin + "Skin.ini";
}

std::string StemOf(const SkinFile& file)
{
    const std::string path = file.pszPath;
    const std::size_t from = path.rfind('\\') + 1;
    return path.substr(from, path.rfind('.') - from);
}

// The number of a key, whose section the table knows.
int Number(const char* pszKey)
{
    for (const kx::skin::SkinKey& key : kx::skin::kKeys)
        if (pszKey && std::strcmp(key.pszKey, pszKey) == 0)
            return CKXIniDataMgr::GetInteger(IniPath(), key.pszSection, pszKey, 0);
    return 0;
}

void Line(Canvas& canvas, CPoint from, CPoint to)
{
    const int dx = to.x - from.x, dy = to.y - from.y;
    const int nSteps = std::max({std::abs(dx), std::abs(dy), 1});
    for (int n = 0; n <= nSteps; ++n)
        canvas.DC().SetPixel(from.x + dx * n / nSteps, from.y + dy * n / nSteps, kMark);
}

// One file: its states with their numbers, and below them one that is drawn longer, with marks where its ends
// are.
class Strip
{
public:
    explicit Strip(const SkinFile& file) : m_file(file)
    {
        m_bitmap.LoadBitmapA(strSkin + file.pszPath);
        m_bitmap.SetMultiState(file.nStates, file.bHorz);
        m_size = CSize(m_bitmap.GetSrcImageRect().Width(), m_bitmap.GetSrcImageRect().Height());
        m_nPerRow = std::clamp(kWidest / (static_cast<int>(m_size.cx) + kGap), 1, file.nStates);
        m_bUpright = StemOf(file) == "Frame_Left" || StemOf(file) == "Frame_Right";
        m_bitmap.SetFillParam(Number(file.pszFirstKey), Number(file.pszLastKey), !m_bUpright);
    }

    bool Save()
    {
        const int nRow = m_size.cy + (m_file.nStates > 1 ? kLabel : kGap);
        const int nRows = (m_file.nStates + m_nPerRow - 1) / m_nPerRow;
        const int cx = 2 * kMargin + std::max(m_nPerRow * (static_cast<int>(m_size.cx) + kGap),
                                              m_file.pszFirstKey ? LongRect(0).Width() : 0);
        const int cy =
            kMargin + nRows * nRow + (m_file.pszFirstKey ? LongRect(0).Height() + 2 * kGap : 0) + 2;
        Canvas canvas(std::max(cx, 60), cy);
        canvas.Ground(CRect(0, 0, std::max(cx, 60), cy));
        for (int n = 0; n < m_file.nStates; ++n)
            State(canvas, n, kMargin + n / m_nPerRow * nRow);
        if (m_file.pszFirstKey) Long(canvas, kMargin + nRows * nRow + kGap);
        return canvas.Save(("skin-" + StemOf(m_file)).c_str());
    }

private:
    void State(Canvas& canvas, int nState, int y)
    {
        const int x = kMargin + nState % m_nPerRow * (m_size.cx + kGap);
        m_bitmap.TransparentDraw(&canvas.DC(), x, y, kKey, nState);
        if (m_file.nStates > 1)
            canvas.Label(x + m_size.cx / 2 - (nState > 9 ? 6 : 3), y + m_size.cy,
                         std::to_string(nState).c_str());
    }
    CRect LongRect(int y) const
    {
        const int nLength = (m_bUpright ? m_size.cy : m_size.cx) * 3 / 2;
        return CRect(kMargin, y, kMargin + (m_bUpright ? m_size.cx : std::max(nLength, 60)),
                     y + (m_bUpright ? nLength : m_size.cy));
    }
    void Long(Canvas& canvas, int y)
    {
        const CRect rc = LongRect(y);
        m_bitmap.TransparentDrawFill(&canvas.DC(), rc, kKey, 0);
        const int nFirst = Number(m_file.pszFirstKey), nLast = Number(m_file.pszLastKey);
        for (const int at : {nFirst, (m_bUpright ? rc.Height() : rc.Width()) - nLast}) {
            if (nFirst + nLast == 0) break; // all of it is repeated
            if (m_bUpright)
                Line(canvas, CPoint(rc.left - 6, rc.top + at), CPoint(rc.right + 6, rc.top + at));
            else
                Line(canvas, CPoint(rc.left + at, rc.top - 4), CPoint(rc.left + at, rc.bottom + 4));
        }
    }

    const SkinFile& m_file;
    CKXBitmap m_bitmap;
    CSize m_size;
    int m_nPerRow = 1;
    bool m_bUpright = false;
};

// An icon or a picture.
bool SaveOther(const SkinFile& file)
{
    Canvas canvas(60, 48);
    canvas.Ground(CRect(0, 0, 60, 48));
    CKXSkinResManager& skins = *CKXSkinResManager::GetSingletonPtr();
    if (file.kind == FileKind::Icon) {
        CKXSkinIMListRes& list = *skins.GetIMLRes();
        const HICON hIcon = StemOf(file) == "Normal" ? list.m_hNormalIcon : list.m_hExpandIcon;
        CSize size;
        if (!GetIconSize(hIcon, &size)) return false;
        canvas.DC().DrawIcon(kMargin, kMargin + (16 - size.cy) / 2, hIcon); // on one line with the pictures
    } else {
        CKXGdiplusImage image;
        image.Load(strSkin + file.pszPath);
        const CSize size = image.GetImageSize();
        image.Render(&canvas.DC(), CRect(kMargin, kMargin, kMargin + size.cx, kMargin + size.cy));
    }
    return canvas.Save(("skin-" + StemOf(file)).c_str());
}

bool SaveFiles()
{
    return std::all_of(std::begin(kx::skin::kFiles), std::end(kx::skin::kFiles), [](const SkinFile& file) {
        return file.kind == FileKind::Bitmap ? Strip(file).Save() : SaveOther(file);
    });
}

struct Pointer
{
    const char* pszKey;
    CPoint to; // from the sample's upper left corner
};

// A sample at the left with the keys that it shows at the right; where the next one goes.
template <class Paint, std::size_t nPointers>
int Sample(Canvas& canvas, int y, int nHeight, Paint paint, const std::array<Pointer, nPointers>& pointers)
{
    constexpr int nWidth = 190, xLabel = 240;
    paint(CRect(kMargin, y, kMargin + nWidth, y + nHeight));
    int yLabel = y - 1;
    canvas.DC().SetTextColor(kInk);
    for (const Pointer& pointer : pointers) {
        const CPoint to(kMargin + pointer.to.x, y + pointer.to.y);
        Line(canvas, to, CPoint(xLabel - 4, yLabel + kLabel / 2));
        canvas.DC().FillSolidRect(to.x - 1, to.y - 1, 3, 3, kMark);
        canvas.Label(xLabel, yLabel, pointer.pszKey);
        yLabel += kLabel;
    }
    return std::max(y + nHeight, yLabel) + 12;
}

// Tells which colour is where.
bool SaveColors()
{
    Canvas canvas(370, 404);
    client::SkinPainter painter(canvas.DC());
    const CKXSkinColorDef& colors = painter.Colors();
    CDC& dc = canvas.DC();
    const auto box = [&](const CRect& rc, COLORREF clrGround, COLORREF clrLine) {
        dc.FillSolidRect(&rc, clrGround);
        painter.Outline(rc, clrLine);
    };
    int y = kMargin;
    const auto title = [&](const CRect& rc) {
        painter.Wnd().m_bmpTitle.TransparentDrawFill(&dc, rc, kKey, 0);
        painter.Bold(CRect(rc.left + 30, rc.top, rc.right, rc.bottom), "The title", painter.Wnd().m_clrTitle);
    };
    y = Sample(canvas, y, painter.Wnd().m_nTitleHeight, title, std::array{Pointer{"TitleColor", {84, 16}}});
    const auto menuBar = [&](const CRect& rc) {
        painter.Gradient(rc, colors.m_clrControlBarBk1, colors.m_clrControlBarBk2);
        dc.FillSolidRect(rc.left, rc.bottom - 1, rc.Width(), 1, colors.m_clrMenuBorderNormal);
        const CRect rcHot(rc.left + 60, rc.top + 4, rc.left + 110, rc.bottom - 4);
        const CRect rcPressed(rc.left + 120, rc.top + 4, rc.left + 174, rc.bottom - 4);
        box(rcHot, colors.m_clrMenuSelectBk, colors.m_clrMenuBorderSelect);
        box(rcPressed, colors.m_clrPopMenuSelBk, colors.m_clrMenuBorderPress);
        painter.Text(CRect(rc.left, rc.top, rc.left + 56, rc.bottom), "File", client::Normal, DT_CENTER);
        painter.Text(rcHot, "Edit", client::Normal, DT_CENTER);
        painter.Text(rcPressed, "View", client::Normal, DT_CENTER);
    };
    y = Sample(canvas, y, 40, menuBar,
               std::array{Pointer{"ControlBarBk1", {182, 2}}, Pointer{"MenuBorderPress", {173, 12}},
                          Pointer{"MenuBorderSelect", {109, 18}}, Pointer{"MenuSelectBk", {100, 28}},
                          Pointer{"ControlBarBk2", {116, 37}}, Pointer{"MenuBorderNormal", {50, 39}}});
    const auto popUp = [&](const CRect& rc) {
        box(rc, colors.m_clrPopMenuBk, colors.m_clrCommonBorderLine);
        dc.FillSolidRect(rc.left + 1, rc.top + 1, 28, rc.Height() - 2, colors.m_clrPopMenuLeftBk);
        const CRect rcHot(rc.left + 3, rc.top + 24, rc.right - 3, rc.top + 44);
        box(rcHot, colors.m_clrPopMenuSelBk, colors.m_clrPopMenuSelBorder);
        painter.Text(CRect(rc.left + 36, rc.top + 3, rc.right, rc.top + 23), "Open");
        painter.Text(CRect(rc.left + 36, rc.top + 24, rc.right, rc.top + 44), "Save");
    };
    y = Sample(canvas, y, 64, popUp,
               std::array{Pointer{"PopMenuBk", {150, 12}}, Pointer{"PopMenuSelBk", {160, 34}},
                          Pointer{"PopMenuSelBorder", {130, 43}}, Pointer{"PopMenuLeftBk", {14, 54}}});
    const auto tabs = [&](const CRect& rc) {
        const CRect rcPage(rc.left + 60, rc.top + 30, rc.right, rc.bottom);
        box(rcPage, colors.m_clrMainTabClient, colors.m_clrMainTabBorderLine);
        box(CRect(rc.left, rc.top + 30, rc.left + 52, rc.bottom), colors.m_clrMainTabBkg,
            colors.m_clrCommonBorderLine);
        painter.TabButton(CRect(rcPage.left + 8, rc.top + 1, rcPage.left + 112, rc.top + 31), "Words",
                          client::Tab::Main, client::Pressed);
        const int yTabs = rcPage.bottom - 12;
        painter.TabButton(CRect(rcPage.left + 8, yTabs - 24, rcPage.left + 66, yTabs), "List",
                          client::Tab::Horz, client::Pressed);
        dc.FillSolidRect(rcPage.left + 4, yTabs - 1, rcPage.Width() - 8, 1, colors.m_clrTabBorderLine);
    };
    y = Sample(canvas, y, 82, tabs,
               std::array{Pointer{"MainTabBorderLine", {189, 36}}, Pointer{"MainTabClient", {170, 46}},
                          Pointer{"TabBorderLine", {176, 69}}, Pointer{"MainTabBkg", {30, 76}}});
    const auto field = [&](const CRect& rc) { painter.Edit(rc, "A field"); };
    y = Sample(canvas, y, 26, field,
               std::array{Pointer{"CommonBorderLine", {180, 0}}, Pointer{"BackColor", {150, 10}},
                          Pointer{"TextColor", {40, 15}}});
    const auto transfer = [&](const CRect& rc) {
        painter.Gradient(rc, colors.m_clrFileTransHotBk1, colors.m_clrFileTransHotBk2);
        painter.Outline(rc, colors.m_clrCommonBorderLine);
        painter.Text(CRect(rc.left + 8, rc.top, rc.right, rc.bottom), "A file under the mouse");
    };
    Sample(canvas, y, 30, transfer,
           std::array{Pointer{"FileTransHotBk1", {170, 3}}, Pointer{"FileTransHotBk2", {150, 26}}});
    return canvas.Save("skin-colors");
}

// A window's upper left corner, ten times as large, with the points of its path.
bool SaveCorner()
{
    constexpr int nPixels = 10, nScale = 10;
    const CSize size(80, 60);
    CKXMemoryDC whole, cut;
    whole.Create(size.cx, size.cy);
    cut.Create(size.cx, size.cy);
    client::SkinPainter painter(whole.GetDC());
    client::PaintFrame(painter, size, "", true, client::Boxes::Close, client::Normal);
    CRgn rgn;
    client::MakeWindowRgn(painter.Wnd(), size, rgn);
    cut.GetDC().FillSolidRect(0, 0, size.cx, size.cy, kGround);
    cut.GetDC().SelectClipRgn(&rgn);
    cut.GetDC().BitBlt(0, 0, size.cx, size.cy, &whole.GetDC(), 0, 0, SRCCOPY);

    Canvas canvas(330, 136);
    constexpr int x = 20, y = 24;
    canvas.DC().StretchBlt(x, y, nPixels * nScale, nPixels * nScale, &cut.GetDC(), 0, 0, nPixels, nPixels,
                           SRCCOPY);
    const std::vector<CPoint>& path = painter.Wnd().m_vecCornerPath1;
    CString strPath;
    for (std::size_t n = 0; n < path.size(); ++n) {
        const CPoint at(x + path[n].x * nScale, y + path[n].y * nScale);
        if (n > 0) Line(canvas, CPoint(x + path[n - 1].x * nScale, y + path[n - 1].y * nScale), at);
        canvas.DC().FillSolidRect(at.x - 2, at.y - 2, 5, 5, kMark);
        strPath.AppendFormat("%s%d,%d",
                             n == 0   ? ""
                             : n == 6 ? "|\n"
                                      : "|",
                             static_cast<int>(path[n].x), static_cast<int>(path[n].y));
    }
    canvas.Label(x, 4, "0,0");
    canvas.Label(140, y, "CornerPath1=");
    canvas.DC().SetTextColor(kInk);
    canvas.DC().DrawText(strPath, CRect(140, y + 16, 330, 136), DT_LEFT);
    return canvas.Save("skin-corner");
}

// The skin's window set as it is with another value of a key.
void LoadWith(CKXSkinWndRes& wnd, const char* pszSection, const char* pszKey, const char* pszValue)
{
    const CString strCopy = strTarget + "skin.ini";
    CopyFileA(IniPath(), strCopy, 0);
    CKXIniDataMgr::WriteString(strCopy, pszSection, pszKey, pszValue);
    wnd.LoadRes(strSkin + "Common\\Window\\", strCopy);
    DeleteFileA(strCopy);
}

bool SaveBackgrounds()
{
    Canvas canvas(560, 130);
    client::SkinPainter painter(canvas.DC());
    int x = kMargin;
    for (const char* pszType : {"default", "colorfill", "singlebmp", "multibmp"}) {
        CKXSkinWndRes wnd;
        LoadWith(wnd, "Background", "BkgType", pszType);
        const CRect rc(x, kMargin, x + 128, 108);
        painter.Background(rc, wnd);
        canvas.Outline(CRect(rc.left - 1, rc.top - 1, rc.right + 1, rc.bottom + 1));
        canvas.Label(x, 111, CString("BkgType=") + pszType);
        x += 138;
    }
    return canvas.Save("skin-backgrounds");
}

// The title with each value of the keys that say which buttons it has, and where.
bool SaveTitles()
{
    struct
    {
        const char *pszKey, *pszValue;
        client::Boxes boxes;
    } const titles[] = {
        {"AutoAlign", "TRUE", client::Boxes::All},
        {"AutoAlign", "FALSE", client::Boxes::All},
        {"AlwaysShowMinButton", "TRUE", client::Boxes::Usual},
        {"AlwaysShowMinButton", "FALSE", client::Boxes::Usual},
    };
    Canvas canvas(430, 130);
    CKXSkinWndRes& wnd = *CKXSkinResManager::GetSingletonPtr()->GetWndRes();
    int n = 0;
    for (const auto& title : titles) {
        const int x = kMargin + n % 2 * 212, y = kMargin + n / 2 * 60;
        CKXMemoryDC window;
        window.Create(200, 44);
        client::SkinPainter painter(window.GetDC());
        LoadWith(wnd, "SysButton", title.pszKey, title.pszValue);
        wnd.m_nBtnSpace = 12;
        window.GetDC().FillSolidRect(0, 0, 200, 44, kPaper); // seen where the title is transparent
        client::PaintFrame(painter, CSize(200, 44), "Title", true, title.boxes, client::Normal);
        canvas.DC().BitBlt(x, y, 200, 40, &window.GetDC(), 0, 0, SRCCOPY);
        const char* const pszSpace = n == 0 ? ", Button_Space=12" : "";
        canvas.Label(x, y + 42, CString(title.pszKey) + "=" + title.pszValue + pszSpace);
        ++n;
    }
    return canvas.Save("skin-titles");
}

// The chosen main tab at its page, with different values of how far it reaches over that.
bool SaveTabs()
{
    Canvas canvas(400, 84);
    client::SkinPainter painter(canvas.DC());
    int x = kMargin;
    for (const int nOver : {0, 5}) {
        const CRect rcPage(x, 40, x + 146, 62);
        canvas.DC().FillSolidRect(&rcPage, painter.Colors().m_clrMainTabClient);
        painter.Outline(rcPage, painter.Colors().m_clrMainTabBorderLine);
        painter.TabButton(CRect(x + 20, 10 + nOver, x + 124, 40 + nOver), "Words", client::Tab::Main,
                          client::Pressed);
        CString strLabel;
        strLabel.Format("MainTabBtnIntersect_Height=%d", nOver);
        canvas.DC().SetTextColor(kInk);
        canvas.Label(x, 66, strLabel);
        x += 200;
    }
    return canvas.Save("skin-tabs");
}

} // namespace

bool pictures::DrawSkinPage()
{
    CKXSkinResManager& skins = *CKXSkinResManager::GetSingletonPtr();
    skins.GetWndRes()->LoadRes(strSkin + "Common\\Window\\", IniPath());
    skins.GetBtnRes()->LoadRes(strSkin + "Common\\Button\\", IniPath());
    skins.GetIMLRes()->LoadRes(strSkin + "Common\\IMList\\", IniPath());
    skins.GetOthRes()->LoadRes(strSkin + "Common\\Others\\", IniPath());
    skins.GetClrDef()->ReadColors(IniPath());
    return SaveFiles() && SaveColors() && SaveCorner() && SaveBackgrounds() && SaveTitles() && SaveTabs();
}

#include "Artwork.h"
#include "SkinWindows.h"

#include <platform/FileSystem.h>

using client::SkinPainter;
using client::TextOf;
using client::TextsOf;

namespace {

// The skin's window set as it were with another type of background: from a copy of its description that says
// so.
bool LoadWithBackground(CKXSkinWndRes& wnd, const char* pszType)
{
    const CString strSkin = CKXSkinResManager::GetSingletonPtr()->GetCurrentSkinPath();
    const CString strCopy = CKXFileSystem::GetInstancePtr()->GetAppPath() + "background.ini";
    return CopyFileA(strSkin + "Skin.ini", strCopy, 0) &&
           CKXIniDataMgr::WriteString(strCopy, "Background", "BkgType", pszType) &&
           wnd.LoadRes(strSkin + "Common\\Window\\", strCopy);
}

// The background of a window three times as large, reduced.
void PaintSample(SkinPainter& painter, const CRect& rc, CKXSkinWndRes& wnd)
{
    const CSize size(rc.Width() * 3, rc.Height() * 3);
    CKXMemoryDC surface;
    surface.Create(size.cx, size.cy);
    SkinPainter(surface.GetDC()).Background(CRect(0, 0, size.cx, size.cy), wnd);
    CKXGdiplusBitmap(surface.GetHBitmap()).Render(&painter.DC(), rc);
    painter.Outline(rc, painter.Colors().m_clrCommonBorderLine);
}

void PaintBackgrounds(SkinPainter& painter, const CRect& rc)
{
    constexpr const char* pszTypes[] = {"default", "colorfill", "singlebmp", "multibmp"};
    const std::vector<CString> texts = TextsOf("IDS_BACKGROUNDS");
    const int nStep = (rc.Width() + 10) / 4;
    for (int n = 0; n < 4 && n < static_cast<int>(texts.size()); ++n) {
        const CRect rcSample(rc.left + n * nStep, rc.top, rc.left + n * nStep + nStep - 10, rc.bottom - 22);
        CKXSkinWndRes wnd;
        if (!LoadWithBackground(wnd, pszTypes[n])) return;
        PaintSample(painter, rcSample, wnd);
        painter.RadioButton(CRect(rcSample.left, rc.bottom - 18, rcSample.right, rc.bottom),
                            texts[static_cast<std::size_t>(n)],
                            n == painter.Wnd().m_nBkgType ? client::On : client::Off, client::Normal);
    }
}

// A row of all buttons in their four states, as they are in a window in front or behind.
void PaintCaptionButtons(SkinPainter& painter, const CRect& rc, int nFirstState)
{
    CKXSkinWndRes& wnd = painter.Wnd();
    CKXBitmap* pBitmaps[] = {&wnd.m_bmpMinBtn, &wnd.m_bmpMaxBtn, &wnd.m_bmpRestoreBtn, &wnd.m_bmpCloseBtn};
    const int nGroup = (rc.Width() + 12) / 4;
    for (int n = 0; n < 4; ++n)
        for (int nState = 0; nState < 4; ++nState)
            pBitmaps[n]->TransparentDraw(&painter.DC(), rc.left + n * nGroup + nState * wnd.m_sizeMinBtn.cx,
                                         rc.top, client::clrKey, nFirstState + nState);
}

} // namespace

void client::PaintSkinSamples(SkinPainter& painter, const CRect& rc)
{
    painter.Heading(CRect(rc.left, rc.top, rc.right, rc.top + 18), TextOf("IDS_BACKGROUND"));
    PaintBackgrounds(painter, CRect(rc.left, rc.top + 26, rc.right, rc.top + 92));
    painter.Heading(CRect(rc.left, rc.top + 104, rc.right, rc.top + 122), TextOf("IDS_CAPTION_BUTTONS"));
    const int nStep = painter.Wnd().m_sizeMinBtn.cy + 4;
    PaintCaptionButtons(painter, CRect(rc.left, rc.top + 130, rc.right, 0), 0);
    PaintCaptionButtons(painter, CRect(rc.left, rc.top + 130 + nStep, rc.right, 0), 4);
}

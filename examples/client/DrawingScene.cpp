#include "Artwork.h"
#include "PngFile.h"
#include "Scene.h"

#include <cstdio>
#include <platform/Host.h>

namespace {

void Label(CDC& dc, int x, int y, const char* pszText)
{
    CFont font;
    font.CreatePointFont(80, "DejaVu Sans");
    CFont* pOld = dc.SelectObject(&font);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(RGB(70, 70, 70));
    dc.TextOut(x, y, pszText);
    dc.SelectObject(pOld);
}

// Squares in two shades, so that one sees what a keyed copy leaves alone.
void Chequer(CDC& dc, const CRect& rect)
{
    for (int y = rect.top; y < rect.bottom; y += 8)
        for (int x = rect.left; x < rect.right; x += 8)
            dc.FillSolidRect(x, y, 8, 8, (x + y) / 8 % 2 ? RGB(225, 225, 225) : RGB(250, 250, 250));
}

void DrawStates(CDC& dc)
{
    CKXBitmap button;
    button.AttachBitmap(client::MakeButtonStates());
    button.SetMultiState(4, 1);
    button.SetFillParam(8, 8, 1);
    Label(dc, 20, 12, "States: copied, and keyed");
    Chequer(dc, CRect(20, 32, 340, 64));
    for (int n = 0; n < 4; ++n) {
        button.Draw(&dc, 20 + n * 38, 33, n);
        button.TransparentDraw(&dc, 184 + n * 38, 33, client::clrKey, n);
    }
    Label(dc, 20, 76, "Fills: 300 wide, and 150 keyed");
    Chequer(dc, CRect(20, 96, 500, 128));
    button.DrawFill(&dc, CRect(20, 97, 320, 127), 0);
    button.TransparentDrawFill(&dc, CRect(336, 97, 486, 127), client::clrKey, 2);
    Label(dc, 20, 140, "Pave: the fill over an area");
    button.SetFillParam(12, 12, 1);
    button.Pave(&dc, CRect(20, 160, 220, 240), 3);
}

void DrawFrames(CDC& dc)
{
    CKXFrameBitmap frame;
    frame.AttachBitmap(client::MakeFrame());
    frame.SetBitmapOptions(CSize(8, 8), CSize(8, 8), CSize(8, 8), CSize(8, 8));
    Label(dc, 250, 140, "A frame at three sizes");
    frame.Draw(&dc, CRect(250, 160, 290, 200), 1, RGB(255, 250, 235));
    frame.Draw(&dc, CRect(304, 160, 404, 230), 1, RGB(235, 245, 225));
    frame.Draw(&dc, CRect(418, 160, 618, 240), 1, RGB(225, 235, 250));
}

void DrawRegion(CDC& dc)
{
    CKXBitmap disc;
    disc.AttachBitmap(client::MakeDisc());
    Label(dc, 20, 256, "A picture, and the region of its shape");
    Chequer(dc, CRect(20, 276, 84, 340));
    disc.TransparentDraw(&dc, 22, 278, client::clrKey, 0);
    CRgn rgn;
    disc.CreateBitmapRgn(rgn, client::clrKey, 0);
    OffsetRgn(rgn, 110, 278);
    CBrush brush(RGB(60, 140, 80));
    dc.FillRgn(&rgn, &brush);
}

void DrawTexts(CDC& dc)
{
    CKXLanResManager* pLans = CKXLanResManager::GetSingletonPtr();
    Label(dc, 250, 256, "Text in both languages");
    dc.SetTextColor(RGB(20, 40, 110));
    for (int n = 0; n < pLans->GetLanCount(); ++n) {
        pLans->SetCurrentLan(pLans->GetLanID(n), 0);
        CFont font;
        font.CreatePointFont(160, pLans->GetString("IDS_DEF_FONT"));
        CFont* pOld = dc.SelectObject(&font);
        CRect rect(250, 276 + n * 62, 620, 334 + n * 62);
        dc.DrawText(pLans->GetString("IDS_GREETING"), &rect, DT_LEFT | DT_NOPREFIX);
        dc.SelectObject(pOld);
    }
}

} // namespace

// A contact sheet of what the drawing classes do, as a picture to look at.
bool client::ShowDrawing()
{
    const CSize size(640, 420);
    CKXMemoryDC sheet;
    sheet.Create(size.cx, size.cy);
    CDC& dc = sheet.GetDC();
    dc.FillSolidRect(0, 0, size.cx, size.cy, RGB(255, 255, 255));
    DrawStates(dc);
    DrawFrames(dc);
    DrawRegion(dc);
    DrawTexts(dc);
    const CString strPath = CKXFileSystem::GetInstancePtr()->GetAppPath() + "contact-sheet.png";
    const std::string systemPath = KXHost::ToSystemPath(strPath);
    if (!WritePng(sheet.GetHDC(), size, systemPath)) return false;
    std::printf("   contact sheet: %s\n", systemPath.c_str());
    return true;
}

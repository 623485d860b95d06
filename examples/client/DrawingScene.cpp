#include "Artwork.h"
#include "Scene.h"
#include "Sheet.h"

namespace {

void DrawStates(client::Sheet& sheet)
{
    CDC& dc = sheet.DC();
    CKXBitmap button;
    button.AttachBitmap(client::MakeButtonStates());
    button.SetMultiState(4, 1);
    button.SetFillParam(8, 8, 1);
    sheet.Label(20, 12, "States: copied, and keyed");
    sheet.Chequer(CRect(20, 32, 340, 64));
    for (int n = 0; n < 4; ++n) {
        button.Draw(&dc, 20 + n * 38, 33, n);
        button.TransparentDraw(&dc, 184 + n * 38, 33, client::clrKey, n);
    }
    sheet.Label(20, 76, "Fills: 300 wide, and 150 keyed");
    sheet.Chequer(CRect(20, 96, 500, 128));
    button.DrawFill(&dc, CRect(20, 97, 320, 127), 0);
    button.TransparentDrawFill(&dc, CRect(336, 97, 486, 127), client::clrKey, 2);
    sheet.Label(20, 140, "Pave: the fill over an area");
    button.SetFillParam(12, 12, 1);
    button.Pave(&dc, CRect(20, 160, 220, 240), 3);
}

void DrawFrames(client::Sheet& sheet)
{
    CDC& dc = sheet.DC();
    CKXFrameBitmap frame;
    frame.AttachBitmap(client::MakeFrame());
    frame.SetBitmapOptions(CSize(8, 8), CSize(8, 8), CSize(8, 8), CSize(8, 8));
    sheet.Label(250, 140, "A frame at three sizes");
    frame.Draw(&dc, CRect(250, 160, 290, 200), 1, RGB(255, 250, 235));
    frame.Draw(&dc, CRect(304, 160, 404, 230), 1, RGB(235, 245, 225));
    frame.Draw(&dc, CRect(418, 160, 618, 240), 1, RGB(225, 235, 250));
}

void DrawRegion(client::Sheet& sheet)
{
    CDC& dc = sheet.DC();
    CKXBitmap disc;
    disc.AttachBitmap(client::MakeDisc());
    sheet.Label(20, 256, "A picture, and the region of its shape");
    sheet.Chequer(CRect(20, 276, 84, 340));
    disc.TransparentDraw(&dc, 22, 278, client::clrKey, 0);
    CRgn rgn;
    disc.CreateBitmapRgn(rgn, client::clrKey, 0);
    OffsetRgn(rgn, 110, 278);
    CBrush brush(RGB(60, 140, 80));
    dc.FillRgn(&rgn, &brush);
}

void DrawTexts(client::Sheet& sheet)
{
    CDC& dc = sheet.DC();
    CKXLanResManager* pLans = CKXLanResManager::GetSingletonPtr();
    sheet.Label(250, 256, "Text in both languages");
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
    Sheet sheet(640, 420);
    DrawStates(sheet);
    DrawFrames(sheet);
    DrawRegion(sheet);
    DrawTexts(sheet);
    return sheet.Write("contact-sheet.png");
}

// Draws the pictures that stand beside the drawing operations and on the page about skins in the reference:
// `kx_pictures SKIN DIRECTORY`.

#include "Canvas.h"

#include <cstdio>
#include <filesystem>
#include <functional>
#include <platform/Host.h>
#include <string>

using pictures::Canvas;
using pictures::kGround;
using pictures::kKey;
using pictures::kPaper;
using pictures::strSkin;
using pictures::strTarget;

namespace {

struct Button : CKXBitmap
{
    Button()
    {
        LoadBitmapA(strSkin + "Common\\Button\\PushButton.bmp");
        SetMultiState(5, 1);
        SetFillParam(8, 8, 1);
        size = CSize(GetBITMAP().bmWidth / 5, GetBITMAP().bmHeight);
    }
    CSize size;
};

bool States()
{
    Button button;
    Canvas canvas(290, 86);
    CKXBitmap whole;
    whole.LoadBitmapA(strSkin + "Common\\Button\\PushButton.bmp");
    canvas.Label(8, 2, "the file");
    whole.Draw(&canvas.DC(), 8, 17, 0);
    canvas.Label(8, 44, "its five states");
    for (int n = 0; n < 5; ++n) {
        button.Draw(&canvas.DC(), 8 + n * (button.size.cx + 8), 59, n);
        canvas.Outline(CRect(7 + n * (button.size.cx + 8), 58, 9 + n * (button.size.cx + 8) + button.size.cx,
                             60 + button.size.cy));
    }
    return canvas.Save("states");
}

bool Draw(bool bKeyed)
{
    Button button;
    Canvas canvas(290, 44);
    canvas.Ground(CRect(0, 0, 290, 44));
    for (int n = 0; n < 4; ++n)
        if (bKeyed)
            button.TransparentDraw(&canvas.DC(), 8 + n * 52, 10, kKey, n);
        else
            button.Draw(&canvas.DC(), 8 + n * 52, 10, n);
    if (bKeyed) button.TransparentDraw(&canvas.DC(), 216, 4, 66, 36, kKey, 0);
    return canvas.Save(bKeyed ? "transparent-draw" : "draw");
}

bool Fill(bool bKeyed)
{
    Button button;
    Canvas canvas(290, 44);
    canvas.Ground(CRect(0, 0, 290, 44));
    int x = 8;
    for (const int cx : {20, 60, 170}) {
        const CRect rc(x, 10, x + cx, 10 + button.size.cy);
        if (bKeyed)
            button.TransparentDrawFill(&canvas.DC(), rc, kKey, 1);
        else
            button.DrawFill(&canvas.DC(), rc, 1);
        x += cx + 10;
    }
    return canvas.Save(bKeyed ? "transparent-fill" : "fill");
}

bool Pave()
{
    CKXBitmap ground;
    ground.LoadBitmapA(strSkin + "Common\\Window\\WndBkg.bmp");
    ground.SetFillParam(0, 0, 1); // no fixed ends: all of it is repeated
    Canvas canvas(290, 120);
    ground.Draw(&canvas.DC(), 8, 8, 0);
    canvas.Outline(CRect(7, 7, 9 + ground.GetBITMAP().bmWidth, 9 + ground.GetBITMAP().bmHeight));
    ground.Pave(&canvas.DC(), CRect(100, 8, 282, 112), 0);
    canvas.Outline(CRect(99, 7, 283, 113));
    return canvas.Save("pave");
}

bool Part(bool bKeyed)
{
    Button button;
    Canvas canvas(290, 60);
    canvas.Ground(CRect(0, 0, 290, 60));
    button.Draw(&canvas.DC(), 8, 10, 2);
    const CRect rcPart(0, 0, 14, 12);
    canvas.Outline(CRect(7, 9, 9 + rcPart.right, 11 + rcPart.bottom));
    const CRect rcTo(90, 10, bKeyed ? 132 : 104, bKeyed ? 46 : 22);
    if (bKeyed)
        button.TransparentDrawPart(&canvas.DC(), rcTo, rcPart, kKey, 2);
    else
        button.DrawPart(&canvas.DC(), rcTo, rcPart, 2);
    return canvas.Save(bKeyed ? "transparent-part" : "part");
}

bool Region()
{
    CKXBitmap mark;
    mark.LoadBitmapA(strSkin + "Common\\IMList\\TeamBtn.bmp");
    Canvas canvas(180, 44);
    mark.Draw(&canvas.DC(), 8, 10, 0);
    CRgn region;
    mark.CreateBitmapRgn(region, kKey, 0);
    OffsetRgn(static_cast<HRGN>(region), 90, 10);
    CBrush brush(RGB(70, 120, 190));
    canvas.DC().FillRgn(&region, &brush);
    return canvas.Save("region");
}

HBITMAP MakeFrame()
{
    CKXMemoryDC surface;
    surface.Create(24, 24);
    CDC& dc = surface.GetDC();
    dc.FillSolidRect(0, 0, 24, 24, kPaper);
    CPen pen(PS_SOLID, 1, RGB(40, 90, 150));
    CBrush brush(RGB(190, 215, 240));
    CPen* const pOldPen = dc.SelectObject(&pen);
    CBrush* const pOldBrush = dc.SelectObject(&brush);
    dc.RoundRect(CRect(0, 0, 24, 24), CPoint(14, 14));
    dc.SelectObject(pOldPen);
    dc.SelectObject(pOldBrush);
    return static_cast<HBITMAP>(surface.GetBitmap().Detach());
}

bool Frame()
{
    Canvas canvas(290, 90);
    CKXBitmap whole;
    whole.AttachBitmap(MakeFrame());
    whole.Draw(&canvas.DC(), 8, 10, 0);
    CKXFrameBitmap frame;
    frame.AttachBitmap(MakeFrame());
    frame.SetBitmapOptions(CSize(8, 8), CSize(8, 8), CSize(8, 8), CSize(8, 8));
    frame.Draw(&canvas.DC(), CRect(50, 10, 130, 50), 0, 0);
    frame.Draw(&canvas.DC(), CRect(150, 10, 280, 80), 1, RGB(235, 243, 250));
    return canvas.Save("frame");
}

bool Picture(bool bFixed)
{
    CKXGdiplusImage image;
    if (!image.Load(strSkin + "Common\\Others\\FileSend.png")) return false;
    Canvas canvas(290, 80);
    const CSize size = image.GetImageSize();
    const CRect boxes[] = {CRect(8, 8, 8 + size.cx, 8 + size.cy), CRect(80, 8, 140, 68),
                           CRect(160, 8, 180, 68)};
    for (const CRect& rc : boxes) {
        canvas.Ground(rc);
        if (bFixed)
            image.FixRender(&canvas.DC(), rc);
        else
            image.Render(&canvas.DC(), rc);
        canvas.Outline(rc);
    }
    if (!bFixed) image.Render(&canvas.DC(), CRect(260, 8, 200, 68)); // turned around: mirrored
    return canvas.Save(bFixed ? "fix-render" : "render");
}

bool Gradients()
{
    constexpr COLORREF clrFrom = RGB(90, 150, 210), clrTo = RGB(245, 250, 255), clrLine = RGB(60, 100, 150);
    Canvas canvas(330, 60);
    const HDC hDC = canvas.DC().GetSafeHdc();
    CKXGdiplusHelper::DrawLinearGradientRect(hDC, CRect(8, 10, 68, 50), clrFrom, clrTo, 0);
    CKXGdiplusHelper::DrawLinearGradientRect(hDC, CRect(72, 10, 132, 50), clrFrom, clrTo, 1);
    CKXGdiplusHelper::DrawGradientRect(hDC, clrFrom, clrTo, CRect(136, 10, 196, 50), 1, clrLine);
    CKXGdiplusHelper::DrawGradientRoundRect(hDC, clrFrom, clrTo, CRect(200, 10, 260, 50), 20, 20, 1, clrLine);
    CKXGdiplusHelper::DrawPathGradientRect(hDC, CRect(264, 10, 322, 50), clrTo, clrFrom);
    return canvas.Save("gradient");
}

bool Words()
{
    Canvas canvas(250, 50);
    CFont font;
    font.CreatePointFont(160, "DejaVu Sans");
    CKXEnglishWord::DrawTestWord(&canvas.DC(), "harbour", "h*rb**r", CRect(10, 8, 240, 42), &font,
                                 RGB(60, 110, 180), RGB(30, 40, 60), 1);
    Canvas result(290, 70);
    CKXEnglishWord::DrawTestWordResult(&result.DC(), "harbour", "harvor", CRect(8, 6, 282, 34),
                                       CRect(8, 36, 282, 64), &font, RGB(30, 130, 60), 0, RGB(30, 40, 60),
                                       RGB(200, 40, 40));
    return canvas.Save("test-word") && result.Save("result-word");
}

} // namespace

int main(int nArgs, char** args)
{
    if (nArgs != 3) {
        std::fprintf(stderr, "usage: kx_pictures SKIN DIRECTORY\n");
        return 2;
    }
    KXHost::UseMemoryDesktop();
    strSkin = KXHost::FromSystemPath(std::filesystem::absolute(args[1])) + "\\";
    strTarget = KXHost::FromSystemPath(std::filesystem::absolute(args[2])) + "\\";
    const Gdiplus::GdiplusStartupInput input;
    std::uintptr_t nToken = 0;
    Gdiplus::GdiplusStartup(&nToken, &input, nullptr);
    CKXLanResManager::GetSingletonPtr()->InsertString("IDS_DEF_FONT", "DejaVu Sans");
    CKXLanResManager::GetSingletonPtr()->InsertString("IDS_UI_POINTS", "80");
    const std::pair<const char*, std::function<bool()>> works[] = {
        {"states", States},
        {"draw", [] { return Draw(false) && Draw(true); }},
        {"fill", [] { return Fill(false) && Fill(true); }},
        {"pave", Pave},
        {"part", [] { return Part(false) && Part(true); }},
        {"region", Region},
        {"frame", Frame},
        {"picture", [] { return Picture(false) && Picture(true); }},
        {"gradients", Gradients},
        {"words", Words},
        {"skin", pictures::DrawSkinPage},
    };
    int nFailed = 0;
    for (const auto& [pszName, work] : works)
        if (!work()) {
            std::fprintf(stderr, "kx_pictures: %s painted nothing\n", pszName);
            ++nFailed;
        }
    CKXSkinResManager::GetSingletonPtr()->UnInitialize();
    Gdiplus::GdiplusShutdown(nToken);
    return nFailed;
}

#include "GdiplusStart.h"
#include "PictureFiles.h"
#include "Scene.h"
#include "Sheet.h"

#include <cstdio>

namespace {

CString PathOf(const char* pszName)
{
    return CKXFileSystem::GetInstancePtr()->GetAppPath() + pszName;
}

bool DrawAlpha(client::Sheet& sheet)
{
    sheet.Label(20, 12, "A PNG with alpha: as it is, enlarged, turned");
    sheet.Chequer(CRect(20, 32, 340, 136));
    CKXGdiplusImage ball;
    if (!client::MakeBallPng(PathOf("ball.png")) || !ball.Load(PathOf("ball.png"))) return false;
    ball.Render(&sheet.DC(), CRect(24, 36, 120, 132));
    ball.Render(&sheet.DC(), CRect(128, 32, 264, 136));
    ball.ToThumbnailImage(64, 64);
    ball.Rotate(Gdiplus::Rotate180FlipNone);
    ball.FixRender(&sheet.DC(), CRect(264, 36, 340, 132));
    return true;
}

bool DrawJpeg(client::Sheet& sheet)
{
    sheet.Label(360, 12, "A JPEG, fitted");
    CKXGdiplusBitmap landscape;
    if (!client::MakeLandscapeJpeg(PathOf("landscape.jpg"))) return false;
    landscape.Load(PathOf("landscape.jpg"));
    if (landscape.GetImageSize() != CSize(160, 100)) return false;
    CDC& dc = sheet.DC();
    for (const CRect& rc : {CRect(360, 32, 530, 136), CRect(538, 32, 628, 136)}) {
        dc.FillSolidRect(&rc, RGB(235, 235, 245));
        landscape.FitRender(&dc, rc);
    }
    sheet.Label(20, 148, "Paved within a region");
    CKXGdiplusImage tile;
    if (!tile.Load(PathOf("landscape.jpg")) || !tile.ToThumbnailImage(48, 48)) return false;
    CRgn rgn;
    rgn.CreateRoundRectRgn(20, 168, 220, 258, 40, 40);
    dc.SelectClipRgn(&rgn);
    tile.PaveRender(&dc, CRect(20, 168, 220, 258));
    dc.SelectClipRgn(nullptr);
    return true;
}

bool DrawExports(client::Sheet& sheet)
{
    sheet.Label(240, 148, "In grey, loaded back");
    CKXGdiplusImage image;
    if (!image.Load(PathOf("landscape.jpg")) || !image.SaveGrayPic(PathOf("grey.jpg"))) return false;
    CKXGdiplusImage grey;
    if (!grey.Load(PathOf("grey.jpg"))) return false;
    grey.Render(&sheet.DC(), CRect(240, 168, 384, 258));
    sheet.Label(404, 148, "Thumbnails");
    for (int n = 0; n < 4; ++n) {
        const CSize size(72 - n * 16, 90 - n * 20);
        CKXGdiplusImage thumbnail;
        if (!image.SaveThumbnailImage(PathOf("thumbnail.png"), size.cx, size.cy, "image/png")) return false;
        if (!thumbnail.Load(PathOf("thumbnail.png")) || thumbnail.GetImageSize() != size) return false;
        const int x = 404 + n * 80 - n * (n - 1) * 8;
        thumbnail.Render(&sheet.DC(), CRect(x, 168, x + size.cx, 168 + size.cy));
    }
    return true;
}

bool DrawGif(client::Sheet& sheet)
{
    sheet.Label(20, 270, "The frames of a GIF");
    CKXGifRender gif;
    if (!client::MakeSpinnerGif(PathOf("spinner.gif")) || !gif.Load(PathOf("spinner.gif"))) return false;
    if (!gif.Play()) return false;
    for (int n = 0; n < 8; ++n) {
        gif.Render(&sheet.DC(), 20 + n * 60, 290);
        gif.Playing(1000ul + 120ul * static_cast<unsigned long>(n));
    }
    return true;
}

void DrawGradients(client::Sheet& sheet)
{
    constexpr COLORREF clrDark = RGB(30, 70, 140);
    constexpr COLORREF clrLight = RGB(235, 245, 255);
    CDC& dc = sheet.DC();
    sheet.Label(20, 350,
                "Gradients: across, mirrored, down with a border, with round corners, out from the centre");
    CKXGdiplusHelper::DrawLinearGradientRect(dc, CRect(20, 370, 130, 440), clrDark, clrLight, 0);
    CKXGdiplusHelper::DrawLinearGradientRect(dc, CRect(142, 370, 252, 440), clrDark, clrLight, 1);
    CKXGdiplusHelper::DrawGradientRect(dc, clrLight, clrDark, CRect(264, 370, 374, 440), 1, RGB(160, 40, 40));
    CKXGdiplusHelper::DrawGradientRoundRect(dc, clrLight, clrDark, CRect(386, 370, 496, 440), 30, 30, 1,
                                            RGB(160, 40, 40));
    CKXGdiplusHelper::DrawPathGradientRect(dc, CRect(508, 370, 618, 440), clrLight, clrDark);
}

} // namespace

// A contact sheet of what the classes of pictures and gradients do.
bool client::ShowPictures()
{
    const GdiplusStart start;
    Sheet sheet(640, 460);
    DrawGradients(sheet);
    return start.IsStarted() && DrawAlpha(sheet) && DrawJpeg(sheet) && DrawExports(sheet) && DrawGif(sheet) &&
           sheet.Write("picture-sheet.png");
}

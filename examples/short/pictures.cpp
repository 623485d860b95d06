#include "Short.h"

// A gradient saved as a PNG, loaded, drawn fitted, and made a grey JPEG and a thumbnail.
namespace {

CKXGdiplusBitmap Sunset(const CSize& size)
{
    CKXMemoryDC surface;
    surface.Create(size.cx, size.cy);
    CKXGdiplusHelper::DrawGradientRect(surface.GetHDC(), RGB(250, 190, 90), RGB(120, 40, 90),
                                       CRect(0, 0, size.cx, size.cy), 0, 0);
    return CKXGdiplusBitmap(surface.GetHBitmap());
}

} // namespace

int main()
{
    const Pictures pictures;
    const CString strPng = Beside("sunset.png");
    if (!Sunset({320, 200}).SaveToFile(strPng, "image/png")) return 1;

    CKXGdiplusImage image;
    if (!image.Load(strPng)) return 1;
    std::printf("%d by %d\n", image.GetImageSize().cx, image.GetImageSize().cy);

    CKXMemoryDC surface;
    surface.Create(100, 100);
    image.FixRender(&surface.GetDC(), CRect(0, 0, 100, 100)); // whole, in its proportions
    const bool bDrawn = surface.GetDC().GetPixel(50, 50) != surface.GetDC().GetPixel(50, 2);

    const bool bSaved = image.SaveGrayPic(Beside("gray.jpg")) &&
                        image.SaveThumbnailImage(Beside("small.jpg"), 64, 64, "image/jpeg");
    return bDrawn && bSaved ? 0 : 1;
}

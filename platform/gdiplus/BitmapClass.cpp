#include "include/platform/GdiPlus.h"
#include "platform/gdiplus/Image.h"

namespace Gdiplus {

using namespace DllExports;

Bitmap::Bitmap(const WCHAR* pszPath, int)
{
    GpBitmap* pBitmap = nullptr;
    const Status status = GdipCreateBitmapFromFile(pszPath, &pBitmap);
    Take(pBitmap, status);
}

Bitmap::Bitmap(IStream* pStream, int)
{
    GpBitmap* pBitmap = nullptr;
    const Status status = GdipCreateBitmapFromStream(pStream, &pBitmap);
    Take(pBitmap, status);
}

Bitmap::Bitmap(HBITMAP hBitmap, void* hPalette)
{
    GpBitmap* pBitmap = nullptr;
    const Status status = GdipCreateBitmapFromHBITMAP(hBitmap, hPalette, &pBitmap);
    Take(pBitmap, status);
}

Bitmap::Bitmap(INT nWidth, INT nHeight, PixelFormat format) : Bitmap(nWidth, nHeight, 0, format, nullptr)
{
}

Bitmap::Bitmap(INT nWidth, INT nHeight, INT nStride, PixelFormat format, BYTE* pScan0)
{
    GpBitmap* pBitmap = nullptr;
    const Status status = GdipCreateBitmapFromScan0(nWidth, nHeight, nStride, format, pScan0, &pBitmap);
    Take(pBitmap, status);
}

// All pictures are bitmaps.
Status Bitmap::GetPixel(INT x, INT y, Color* pColor) const
{
    ARGB color = 0;
    if (!pColor) return Keep(InvalidParameter);
    const Status status = Keep(GdipBitmapGetPixel(static_cast<GpBitmap*>(Native()), x, y, &color));
    if (status == Ok) *pColor = Color(color);
    return status;
}

Status Bitmap::SetPixel(INT x, INT y, const Color& color)
{
    return Keep(GdipBitmapSetPixel(static_cast<GpBitmap*>(Native()), x, y, color.GetValue()));
}

} // namespace Gdiplus

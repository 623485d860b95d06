#include "platform/gdiplus/Blend.h"
#include "platform/gdiplus/Image.h"
#include "platform/gdiplus/Startup.h"

using namespace kx::gdiplus;

namespace Gdiplus::DllExports {

namespace {

template <class Value, class Get>
GpStatus Tell(const GpImage* pImage, Value* pValue, Get&& get) noexcept
{
    return Guarded([&] {
        if (!pImage || !pValue) return InvalidParameter;
        *pValue = static_cast<Value>(get(*pImage));
        return Ok;
    });
}

bool HasPixel(const GpBitmap* pBitmap, INT x, INT y) noexcept
{
    return pBitmap && x >= 0 && y >= 0 && x < pBitmap->Width() && y < pBitmap->Height();
}

} // namespace

GpStatus GdipGetImageWidth(GpImage* pImage, UINT* pnWidth)
{
    return Tell(pImage, pnWidth, [](const GpImage& image) { return image.Width(); });
}

GpStatus GdipGetImageHeight(GpImage* pImage, UINT* pnHeight)
{
    return Tell(pImage, pnHeight, [](const GpImage& image) { return image.Height(); });
}

GpStatus GdipGetImagePixelFormat(GpImage* pImage, PixelFormat* pFormat)
{
    return Tell(pImage, pFormat, [](const GpImage& image) { return image.Format(); });
}

GpStatus GdipBitmapGetPixel(GpBitmap* pBitmap, INT x, INT y, ARGB* pColor)
{
    return Guarded([&] {
        if (!HasPixel(pBitmap, x, y) || !pColor) return InvalidParameter;
        const DWORD pixel = pBitmap->Get(x, y);
        *pColor = pixel | ALPHA_BITS;
        if (pBitmap->HighByte() == Alpha::Straight) *pColor = pixel;
        if (pBitmap->HighByte() == Alpha::Premultiplied) ToStraight(&pixel, pColor, 1);
        return Ok;
    });
}

GpStatus GdipBitmapSetPixel(GpBitmap* pBitmap, INT x, INT y, ARGB color)
{
    return Guarded([&] {
        if (!HasPixel(pBitmap, x, y)) return InvalidParameter;
        pBitmap->Set(x, y, pBitmap->HighByte() == Alpha::Premultiplied ? ToMultiplied(color) : color);
        return Ok;
    });
}

} // namespace Gdiplus::DllExports

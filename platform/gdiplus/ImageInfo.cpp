#include "platform/gdiplus/Image.h"
#include "platform/gdiplus/Startup.h"

using namespace kx::gdiplus;

namespace Gdiplus::DllExports {

namespace {

template <class Value, class Get>
GpStatus Tell(GpImage* pImage, Value* pValue, Get&& get) noexcept
{
    return Guarded([&] {
        if (!pImage || !pValue) return InvalidParameter;
        *pValue = static_cast<Value>(get(*pImage));
        return Ok;
    });
}

// Null for none there.
DWORD* PixelAt(GpBitmap* pBitmap, INT x, INT y) noexcept
{
    if (!pBitmap || x < 0 || y < 0) return nullptr;
    const PixelView pixels = pBitmap->Pixels();
    return x < pixels.width && y < pixels.height ? pixels.Row(y) + x : nullptr;
}

} // namespace

GpStatus GdipGetImageWidth(GpImage* pImage, UINT* pnWidth)
{
    return Tell(pImage, pnWidth, [](GpImage& image) { return image.Pixels().width; });
}

GpStatus GdipGetImageHeight(GpImage* pImage, UINT* pnHeight)
{
    return Tell(pImage, pnHeight, [](GpImage& image) { return image.Pixels().height; });
}

GpStatus GdipGetImagePixelFormat(GpImage* pImage, PixelFormat* pFormat)
{
    return Tell(pImage, pFormat, [](GpImage& image) { return image.Format(); });
}

GpStatus GdipBitmapGetPixel(GpBitmap* pBitmap, INT x, INT y, ARGB* pColor)
{
    return Guarded([&] {
        const DWORD* const pPixel = PixelAt(pBitmap, x, y);
        if (!pPixel || !pColor) return InvalidParameter;
        *pColor = pBitmap->Pixels().alpha == Alpha::Opaque ? *pPixel | ALPHA_BITS : *pPixel;
        return Ok;
    });
}

GpStatus GdipBitmapSetPixel(GpBitmap* pBitmap, INT x, INT y, ARGB color)
{
    return Guarded([&] {
        DWORD* const pPixel = PixelAt(pBitmap, x, y);
        if (!pPixel) return InvalidParameter;
        *pPixel = color;
        return Ok;
    });
}

} // namespace Gdiplus::DllExports

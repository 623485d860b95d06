#include "platform/gdiplus/Calls.h"
#include "platform/gdiplus/Image.h"

#include <cstring>

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

bool HasDimension(const GpImage* pImage, const GUID* pDimension) noexcept
{
    return pImage && pDimension && pImage->Dimension() == *pDimension;
}

unsigned CountOf(const GpImage& image) noexcept
{
    return image.Frames() ? image.Frames()->Count() : 1;
}

std::optional<Property> FindProperty(const GpImage& image, PROPID id)
{
    return image.Frames() ? image.Frames()->FindProperty(id) : std::nullopt;
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

// ---- Frames

GpStatus GdipImageGetFrameDimensionsCount(GpImage* pImage, UINT* pnCount)
{
    return Guarded([&] {
        if (!pImage || !pnCount) return InvalidParameter;
        *pnCount = 1;
        return Ok;
    });
}

GpStatus GdipImageGetFrameDimensionsList(GpImage* pImage, GUID* pDimensions, UINT nCount)
{
    return Guarded([&] {
        if (!pImage || !pDimensions || nCount != 1) return InvalidParameter;
        *pDimensions = pImage->Dimension();
        return Ok;
    });
}

GpStatus GdipImageGetFrameCount(GpImage* pImage, const GUID* pDimension, UINT* pnCount)
{
    return Guarded([&] {
        if (!HasDimension(pImage, pDimension) || !pnCount) return InvalidParameter;
        *pnCount = CountOf(*pImage);
        return Ok;
    });
}

GpStatus GdipImageSelectActiveFrame(GpImage* pImage, const GUID* pDimension, UINT nFrame)
{
    return Guarded([&] {
        if (!HasDimension(pImage, pDimension) || nFrame >= CountOf(*pImage)) return InvalidParameter;
        return pImage->SelectFrame(nFrame);
    });
}

GpStatus GdipGetPropertyItemSize(GpImage* pImage, PROPID id, UINT* pnSize)
{
    return Guarded([&] {
        if (!pImage || !pnSize) return InvalidParameter;
        *pnSize = 0;
        const auto property = FindProperty(*pImage, id);
        if (!property) return PropertyNotFound;
        *pnSize = static_cast<UINT>(sizeof(PropertyItem) + property->value.size());
        return Ok;
    });
}

GpStatus GdipGetPropertyItem(GpImage* pImage, PROPID id, UINT nSize, PropertyItem* pItem)
{
    return Guarded([&] {
        if (!pImage || !pItem) return InvalidParameter;
        const auto property = FindProperty(*pImage, id);
        if (!property) return PropertyNotFound;
        const std::size_t nValue = property->value.size();
        if (nSize != sizeof(PropertyItem) + nValue) return InvalidParameter;
        *pItem = {id, static_cast<DWORD>(nValue), property->type, pItem + 1};
        std::memcpy(pItem->value, property->value.data(), nValue);
        return Ok;
    });
}

} // namespace Gdiplus::DllExports

#include "platform/gdiplus/Calls.h"
#include "platform/gdiplus/Image.h"
#include "platform/gdiplus/Scale.h"

#include <algorithm>
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

namespace {

constexpr int kTile = 16; // pixels of a cache line

// A turn by a quarter is a mirroring at the diagonal and one along an axis. It goes by tiles, so that the
// lines that a column touches serve their whole width.
void Transpose(const PixelView& from, kx::gdi::Surface& to, bool bMirrorX, bool bMirrorY) noexcept
{
    for (int top = 0; top < from.height; top += kTile)
        for (int left = 0; left < from.width; left += kTile)
            for (int x = left; x < std::min(left + kTile, from.width); ++x) {
                DWORD* const row = to.Row(bMirrorY ? from.width - 1 - x : x);
                for (int y = top; y < std::min(top + kTile, from.height); ++y)
                    row[bMirrorX ? from.height - 1 - y : y] = from.Row(y)[x];
            }
}

void Mirror(const PixelView& from, kx::gdi::Surface& to, bool bMirrorX, bool bMirrorY) noexcept
{
    for (int y = 0; y < from.height; ++y) {
        const DWORD* const row = from.Row(y);
        DWORD* const out = to.Row(bMirrorY ? from.height - 1 - y : y);
        if (bMirrorX)
            std::reverse_copy(row, row + from.width, out);
        else
            std::copy_n(row, from.width, out);
    }
}

// The pixels turned to the right, then mirrored. Nothing for a lack of memory.
std::optional<kx::gdi::Surface> Turned(const PixelView& from, RotateFlipType type)
{
    const int nQuarters = type & 3;
    const bool bFlipX = (type & 4) != 0;
    const bool bTurned = nQuarters % 2 != 0;
    auto to = bTurned ? kx::gdi::Surface::Make(from.height, from.width)
                      : kx::gdi::Surface::Make(from.width, from.height);
    if (!to) return std::nullopt;
    const bool bHalf = nQuarters >= 2; // turned by a half besides
    if (bTurned)
        Transpose(from, *to, bHalf == bFlipX, bHalf);
    else
        Mirror(from, *to, bHalf != bFlipX, bHalf);
    return to;
}

constexpr PixelFormat FormatOf(Alpha alpha) noexcept
{
    return alpha == Alpha::Opaque ? PixelFormat32bppRGB : PixelFormat32bppARGB;
}

} // namespace

GpStatus GdipImageRotateFlip(GpImage* pImage, RotateFlipType type)
{
    return Guarded([&] {
        if (!pImage) return InvalidParameter;
        if (type == RotateNoneFlipNone) return Ok;
        auto surface = Turned(pImage->Pixels(), type);
        if (!surface) return OutOfMemory;
        pImage->Replace(std::move(*surface));
        return Ok;
    });
}

GpStatus GdipGetImageThumbnail(GpImage* pImage, UINT nWidth, UINT nHeight, GpImage** ppThumbnail,
                               GetThumbnailImageAbort, void*)
{
    constexpr UINT kUsual = 120;
    return MakeObject(ppThumbnail, [&] {
        if (nWidth == 0 && nHeight == 0) nWidth = nHeight = kUsual;
        if (!pImage || nWidth == 0 || nHeight == 0) return InvalidParameter;
        const GpStatus status = CheckSize(nWidth, nHeight);
        if (status != Ok) return status;
        auto surface = kx::gdi::Surface::Make(static_cast<int>(nWidth), static_cast<int>(nHeight));
        if (!surface) return OutOfMemory;
        Scale(pImage->Pixels(), *surface);
        const Alpha alpha = pImage->Pixels().alpha;
        return Give<GpBitmap>(ppThumbnail, Picture{std::move(*surface), alpha, FormatOf(alpha)});
    });
}

} // namespace Gdiplus::DllExports

#include "platform/gdiplus/DrawObjects.h"
#include "platform/gdiplus/Image.h"
#include "platform/gdiplus/RotateFlip.h"
#include "platform/gdiplus/Scale.h"

using namespace kx::gdiplus;

namespace Gdiplus::DllExports {

namespace {

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
        auto surface = RotateFlip(pImage->Pixels(), type);
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

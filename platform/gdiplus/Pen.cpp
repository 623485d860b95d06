#include "platform/gdiplus/Pen.h"

#include "platform/gdi/Rect.h"
#include "platform/gdiplus/DrawObjects.h"
#include "platform/gdiplus/FillArea.h"
#include "platform/gdiplus/SolidBrush.h"

#include <algorithm>
#include <cmath>

using namespace kx::gdiplus;

namespace {

// The first pixel from a position on, or the end of coordinates that it lies beyond.
int PixelFrom(double position) noexcept
{
    return static_cast<int>(std::clamp<double>(std::ceil(position), INT32_MIN, INT32_MAX));
}

} // namespace

namespace Gdiplus {

kx::gdi::PixelRegion GpPen::Outline(INT x, INT y, INT nWidth, INT nHeight) const
{
    const auto grown = [&](double by) -> RECT {
        return {PixelFrom(x - by), PixelFrom(y - by), PixelFrom(static_cast<double>(x) + nWidth + by),
                PixelFrom(static_cast<double>(y) + nHeight + by)};
    };
    kx::gdi::PixelRegion outline(grown(width / 2));
    outline.Subtract(kx::gdi::PixelRegion(grown(-width / 2)));
    return outline;
}

namespace DllExports {

GpStatus GdipCreatePen1(ARGB color, REAL nWidth, GpUnit unit, GpPen** ppPen)
{
    return MakeObject(ppPen, [&] {
        if (!std::isfinite(nWidth) || (unit != UnitWorld && unit != UnitPixel)) return InvalidParameter;
        return Give<GpPen>(ppPen, color, nWidth);
    });
}

GpStatus GdipDeletePen(GpPen* pPen)
{
    return EndObject(pPen);
}

GpStatus GdipDrawRectangleI(GpGraphics* pGraphics, GpPen* pPen, INT x, INT y, INT nWidth, INT nHeight)
{
    return Guarded([&] {
        if (!pGraphics || !pPen) return InvalidParameter;
        return pGraphics->On([&](const Target& target) {
            if (nWidth >= 0 && nHeight >= 0)
                FillArea(target, SolidBrush(pPen->color), pPen->Outline(x, y, nWidth, nHeight));
        });
    });
}

} // namespace DllExports

} // namespace Gdiplus

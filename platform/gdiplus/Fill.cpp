#include "platform/gdiplus/FillArea.h"
#include "platform/gdiplus/Region.h"
#include "platform/gdiplus/Startup.h"

using namespace kx::gdiplus;

namespace Gdiplus::DllExports {

GpStatus GdipFillRectangleI(GpGraphics* pGraphics, GpBrush* pBrush, INT x, INT y, INT nWidth, INT nHeight)
{
    return Guarded([&] {
        if (!pGraphics || !pBrush) return InvalidParameter;
        return pGraphics->On(
            [&](const Target& target) { FillArea(target, *pBrush, BlockArea(x, y, nWidth, nHeight)); });
    });
}

GpStatus GdipFillRegion(GpGraphics* pGraphics, GpBrush* pBrush, GpRegion* pRegion)
{
    return Guarded([&] {
        if (!pGraphics || !pBrush || !pRegion) return InvalidParameter;
        return pGraphics->On([&](const Target& target) { FillArea(target, *pBrush, pRegion->pixels); });
    });
}

} // namespace Gdiplus::DllExports

#include "platform/gdi/Region.h"

#include "include/platform/GdiPlusFlat.h"
#include "platform/gdiplus/DrawObjects.h"
#include "platform/gdiplus/Region.h"

using namespace kx::gdiplus;

namespace Gdiplus::DllExports {

GpStatus GdipCreateRegionHrgn(HRGN hRgn, GpRegion** ppRegion)
{
    return MakeObject(ppRegion, [&] {
        const auto region = kx::gdi::FindAs<kx::gdi::Region>(hRgn);
        return region ? Give<GpRegion>(ppRegion, region->pixels) : InvalidParameter;
    });
}

GpStatus GdipDeleteRegion(GpRegion* pRegion)
{
    return EndObject(pRegion);
}

} // namespace Gdiplus::DllExports

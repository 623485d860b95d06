#include "platform/gdiplus/Graphics.h"

#include "platform/gdiplus/DrawObjects.h"

using namespace kx::gdiplus;

namespace Gdiplus::DllExports {

GpStatus GdipCreateFromHDC(HDC hDC, GpGraphics** ppGraphics)
{
    return MakeObject(ppGraphics, [&] {
        if (!kx::gdi::FindAs<kx::gdi::DeviceContext>(hDC)) return InvalidParameter;
        return Give<GpGraphics>(ppGraphics, hDC);
    });
}

GpStatus GdipGetImageGraphicsContext(GpImage* pImage, GpGraphics** ppGraphics)
{
    return MakeObject(ppGraphics,
                      [&] { return pImage ? Give<GpGraphics>(ppGraphics, pImage) : InvalidParameter; });
}

GpStatus GdipDeleteGraphics(GpGraphics* pGraphics)
{
    return EndObject(pGraphics);
}

} // namespace Gdiplus::DllExports

#include "platform/gdiplus/Graphics.h"

#include "platform/gdiplus/Calls.h"

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

GpStatus GdipGetVisibleClipBoundsI(GpGraphics* pGraphics, GpRect* pRect)
{
    return Guarded([&] {
        if (!pGraphics || !pRect) return InvalidParameter;
        return pGraphics->On([&](const Target& target) {
            const RECT& bounds = target.reach;
            if (target.clip.empty())
                *pRect = {};
            else
                *pRect = {bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top};
        });
    });
}

} // namespace Gdiplus::DllExports

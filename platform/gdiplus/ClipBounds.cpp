#include "platform/gdiplus/ClipRows.h"
#include "platform/gdiplus/Graphics.h"
#include "platform/gdiplus/Startup.h"

namespace Gdiplus::DllExports {

GpStatus GdipGetVisibleClipBoundsI(GpGraphics* pGraphics, GpRect* pRect)
{
    return kx::gdiplus::Guarded([&] {
        if (!pGraphics || !pRect) return InvalidParameter;
        return pGraphics->On([&](const kx::gdiplus::Target& target) {
            const RECT bounds = kx::gdiplus::BoundsOf(target.clip);
            if (target.clip.empty())
                *pRect = {};
            else
                *pRect = {bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top};
        });
    });
}

} // namespace Gdiplus::DllExports

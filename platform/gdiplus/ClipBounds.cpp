#include "platform/gdiplus/Graphics.h"
#include "platform/gdiplus/Startup.h"

#include <algorithm>

namespace Gdiplus::DllExports {

GpStatus GdipGetVisibleClipBoundsI(GpGraphics* pGraphics, GpRect* pRect)
{
    return kx::gdiplus::Guarded([&] {
        if (!pGraphics || !pRect) return InvalidParameter;
        return pGraphics->On([&](const kx::gdiplus::Target& target) {
            *pRect = {};
            if (target.clip.empty()) return;
            RECT bounds = target.clip.front();
            bounds.bottom = target.clip.back().bottom;
            for (const RECT& part : target.clip) {
                bounds.left = std::min(bounds.left, part.left);
                bounds.right = std::max(bounds.right, part.right);
            }
            *pRect = {bounds.left - target.origin.x, bounds.top - target.origin.y, bounds.right - bounds.left,
                      bounds.bottom - bounds.top};
        });
    });
}

} // namespace Gdiplus::DllExports

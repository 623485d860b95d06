#pragma once

#include "platform/Handles.h"
#include "platform/gdi/DeviceContext.h"
#include "platform/gdiplus/Image.h"

#include <span>

namespace kx::gdiplus {

// The surface that a graphics draws on, for the length of one operation.
struct Target
{
    PixelView pixels;
    std::span<const RECT> clip; // what may be written: disjoint, in rows from the top; within the pixels
    RECT reach;                 // the least rectangle around the clip
};

// Lays a run of pixels over another by its alpha. The high byte of an opaque target becomes 0, as fills leave
// it on a surface. The two don't overlap.
void Blend(const DWORD* from, Alpha fromAlpha, DWORD* to, Alpha toAlpha, int n) noexcept;

} // namespace kx::gdiplus

namespace Gdiplus {

// Draws on a device context, found anew for each operation, or on a picture.
class GpGraphics
{
public:
    explicit GpGraphics(HDC hDC) noexcept : m_hDC(hDC) {}
    explicit GpGraphics(GpImage* pImage) noexcept : m_pImage(pImage) {}

    // Gives `draw` the target; Win32Error if the device context is gone.
    template <class Draw>
    Status On(Draw&& draw) const
    {
        return m_pImage ? OnPicture(draw) : OnSurface(draw);
    }

private:
    template <class Draw>
    Status OnSurface(Draw&& draw) const
    {
        using namespace kx;
        const auto context = gdi::FindAs<gdi::DeviceContext>(m_hDC);
        if (!context) return Win32Error;
        const gdi::Canvas canvas = context->Paint();
        draw(gdiplus::Target{gdiplus::ViewOf(canvas.surface, gdiplus::Alpha::Opaque), canvas.clip,
                             canvas.reach});
        return Ok;
    }

    template <class Draw>
    Status OnPicture(Draw&& draw) const
    {
        const kx::gdiplus::PixelView pixels = m_pImage->Pixels();
        const RECT all{0, 0, pixels.width, pixels.height};
        draw(kx::gdiplus::Target{pixels, {&all, 1}, all});
        return Ok;
    }

    HDC m_hDC = nullptr;
    GpImage* m_pImage = nullptr;
    kx::LiveHandle m_live;
};

} // namespace Gdiplus

#include "platform/gdiplus/Graphics.h"

#include "platform/gdiplus/Calls.h"

namespace kx::gdiplus {

namespace {

constexpr DWORD Channel(DWORD pixel, int nShift) noexcept
{
    return pixel >> nShift & 0xFF;
}

// Lays straight alpha over opaque pixels.
void BlendRun(const DWORD* __restrict from, DWORD* __restrict to, int n) noexcept
{
    for (int x = 0; x < n; ++x)
        to[x] = gdi::Mixed(from[x], to[x], from[x] >> 24) & gdi::COLOR_BITS;
}

void CopyRun(const DWORD* from, DWORD* to, int n, DWORD set) noexcept
{
    for (int x = 0; x < n; ++x)
        to[x] = (from[x] & gdi::COLOR_BITS) | set;
}

// Both of straight alpha, the upper not 0: the colours are weighed by what is seen of each.
DWORD StraightOver(DWORD from, DWORD to) noexcept
{
    const DWORD above = (from >> 24) * 255;
    const DWORD below = (to >> 24) * (255 - (from >> 24));
    const DWORD all = above + below;
    DWORD pixel = (all + 127) / 255 << 24;
    for (const int nShift : {0, 8, 16}) {
        const DWORD sum = Channel(from, nShift) * above + Channel(to, nShift) * below;
        pixel |= (sum + all / 2) / all << nShift;
    }
    return pixel;
}

void BlendStraightRun(const DWORD* from, DWORD* to, int n) noexcept
{
    for (int x = 0; x < n; ++x) {
        if (from[x] >> 24 == 255)
            to[x] = from[x];
        else if (from[x] >> 24 != 0)
            to[x] = StraightOver(from[x], to[x]);
    }
}

} // namespace

void Blend(const DWORD* from, Alpha fromAlpha, DWORD* to, Alpha toAlpha, int n) noexcept
{
    if (fromAlpha == Alpha::Opaque) return CopyRun(from, to, n, toAlpha == Alpha::Opaque ? 0 : ALPHA_BITS);
    toAlpha == Alpha::Opaque ? BlendRun(from, to, n) : BlendStraightRun(from, to, n);
}

} // namespace kx::gdiplus

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

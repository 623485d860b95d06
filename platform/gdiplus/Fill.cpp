#include "platform/gdi/PixelRegion.h"
#include "platform/gdi/Rect.h"
#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/Calls.h"
#include "platform/gdiplus/Graphics.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

using namespace kx::gdiplus;

namespace Gdiplus {

class GpRegion
{
public:
    explicit GpRegion(kx::gdi::PixelRegion of) noexcept : pixels(std::move(of)) {}

    const kx::gdi::PixelRegion pixels;

private:
    kx::LiveHandle m_live;
};

// One colour, and a width of at least 1.
class GpPen
{
public:
    GpPen(ARGB of, REAL nWidth) noexcept : color(of), width(std::max(nWidth, 1.F)) {}

    // The pixels of a rectangle's outline, whose lines lie in the middle of the pen's: one of a width of 1
    // covers the column x for a line at x, one of 2 the column before it too. Throws std::bad_alloc.
    kx::gdi::PixelRegion Outline(INT x, INT y, INT nWidth, INT nHeight) const;

    const ARGB color;
    const double width;

private:
    kx::LiveHandle m_live;
};

namespace {

// One colour, as pens have.
class SolidBrush : public GpBrush
{
public:
    explicit SolidBrush(ARGB color) noexcept : m_color(color) {}
    bool IsOpaque() const noexcept override { return m_color >> 24 == 255; }
    bool HasOneRow() const noexcept override { return true; }
    void Row(std::int64_t, std::int64_t, DWORD mask, std::span<DWORD> out) const noexcept override
    {
        std::fill(out.begin(), out.end(), m_color & mask);
    }

private:
    const ARGB m_color;
};

// One operation of a brush on a target.
class Filling
{
public:
    Filling(const Target& target, const GpBrush& brush, int nLongest)
        : m_target(target),
          m_brush(brush),
          m_mask(target.pixels.alpha == Alpha::Opaque ? kx::gdi::COLOR_BITS : ~DWORD{0})
    {
        if (!brush.IsOpaque()) m_row.resize(static_cast<std::size_t>(nLongest));
    }

    void Box(const RECT& box) noexcept { m_brush.IsOpaque() ? CopyBox(box) : BlendBox(box); }

private:
    void CopyBox(const RECT& box) const noexcept
    {
        const auto nCount = static_cast<std::size_t>(box.right - box.left);
        DWORD* first = m_target.pixels.Row(box.top) + box.left;
        for (int y = box.top; y < box.bottom; ++y) {
            DWORD* row = m_target.pixels.Row(y) + box.left;
            if (y > box.top && m_brush.HasOneRow())
                std::memcpy(row, first, nCount * sizeof(DWORD));
            else
                m_brush.Row(box.left, y, m_mask, {row, nCount});
        }
    }

    void BlendBox(const RECT& box) noexcept
    {
        const int nCount = box.right - box.left;
        for (int y = box.top; y < box.bottom; ++y) {
            if (y == box.top || !m_brush.HasOneRow())
                m_brush.Row(box.left, y, ~DWORD{0}, {m_row.data(), static_cast<std::size_t>(nCount)});
            Blend(m_row.data(), Alpha::Straight, m_target.pixels.Row(y) + box.left, m_target.pixels.alpha,
                  nCount);
        }
    }

    const Target& m_target;
    const GpBrush& m_brush;
    const DWORD m_mask;
    std::vector<DWORD> m_row;
};

// Paints pixels, in the graphics' coordinates, each once. Throws std::bad_alloc and paints nothing then.
void FillArea(const Target& target, const GpBrush& brush, kx::gdi::PixelRegion area)
{
    if (brush.Area()) area.IntersectWith(*brush.Area());
    const RECT bounds = kx::gdi::Cut(area.Extents(), target.reach);
    if (kx::gdi::IsEmpty(bounds)) return;
    Filling filling(target, brush, bounds.right - bounds.left);
    kx::gdi::ForEachPart(area.Boxes(), bounds, [&](const RECT& box) {
        kx::gdi::ForEachPart(target.clip, box, [&](const RECT& part) { filling.Box(part); });
    });
}

// The first pixel from a position on, or the end of coordinates that it lies beyond.
int PixelFrom(double position) noexcept
{
    return static_cast<int>(std::clamp<double>(std::ceil(position), INT32_MIN, INT32_MAX));
}

} // namespace

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

GpStatus GdipFillRectangleI(GpGraphics* pGraphics, GpBrush* pBrush, INT x, INT y, INT nWidth, INT nHeight)
{
    return Guarded([&] {
        if (!pGraphics || !pBrush) return InvalidParameter;
        return pGraphics->On([&](const Target& target) {
            FillArea(target, *pBrush, kx::gdi::PixelRegion(kx::gdi::AreaOf({x, y, nWidth, nHeight})));
        });
    });
}

GpStatus GdipFillRegion(GpGraphics* pGraphics, GpBrush* pBrush, GpRegion* pRegion)
{
    return Guarded([&] {
        if (!pGraphics || !pBrush || !pRegion) return InvalidParameter;
        return pGraphics->On([&](const Target& target) { FillArea(target, *pBrush, pRegion->pixels); });
    });
}

} // namespace DllExports

} // namespace Gdiplus

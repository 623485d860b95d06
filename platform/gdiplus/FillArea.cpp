#include "platform/gdiplus/FillArea.h"

#include "platform/gdi/Block.h"
#include "platform/gdiplus/Blend.h"

#include <cstring>

namespace kx::gdiplus {

namespace {

// One operation of a brush on a target.
class Filling
{
public:
    Filling(const Target& target, const Gdiplus::GpBrush& brush, int nLongest)
        : m_target(target),
          m_brush(brush),
          m_mask(target.pixels.alpha == Alpha::Opaque ? gdi::COLOR_BITS : ~DWORD{0})
    {
        if (!brush.IsOpaque()) m_row.resize(static_cast<std::size_t>(nLongest));
    }

    void Box(const RECT& box) noexcept { m_brush.IsOpaque() ? Cover(box) : Lay(box); }

private:
    void Draw(int x, int y, DWORD mask, std::span<DWORD> out) const noexcept { m_brush.Row(x, y, mask, out); }

    void Cover(const RECT& box) const noexcept
    {
        const auto nCount = static_cast<std::size_t>(box.right - box.left);
        DWORD* first = m_target.pixels.Row(box.top) + box.left;
        for (int y = box.top; y < box.bottom; ++y) {
            DWORD* row = m_target.pixels.Row(y) + box.left;
            if (y > box.top && m_brush.HasOneRow())
                std::memcpy(row, first, nCount * sizeof(DWORD));
            else
                Draw(box.left, y, m_mask, {row, nCount});
        }
    }

    void Lay(const RECT& box) noexcept
    {
        const int nCount = box.right - box.left;
        for (int y = box.top; y < box.bottom; ++y) {
            if (y == box.top || !m_brush.HasOneRow())
                Draw(box.left, y, ~DWORD{0}, {m_row.data(), static_cast<std::size_t>(nCount)});
            Blend(m_row.data(), Alpha::Straight, m_target.pixels.Row(y) + box.left, m_target.pixels.alpha,
                  nCount);
        }
    }

    const Target& m_target;
    const Gdiplus::GpBrush& m_brush;
    const DWORD m_mask;
    std::vector<DWORD> m_row;
};

} // namespace

void FillArea(const Target& target, const Gdiplus::GpBrush& brush, gdi::PixelRegion area)
{
    if (brush.Area()) area.IntersectWith(*brush.Area());
    area.IntersectWith(gdi::PixelRegion::FromRects(target.clip));
    const RECT bounds = area.Extents();
    Filling filling(target, brush, bounds.right - bounds.left);
    for (const auto& box : area.Boxes())
        filling.Box(gdi::ToRect(box));
}

gdi::PixelRegion BlockArea(int x, int y, int nWidth, int nHeight) noexcept
{
    return gdi::PixelRegion(gdi::Place({x, y, nWidth, nHeight}));
}

} // namespace kx::gdiplus

#include "platform/gdiplus/PathGradient.h"

#include "platform/gdiplus/DrawObjects.h"

#include <algorithm>
#include <cmath>

using namespace kx::gdiplus;

namespace Gdiplus {

// A row of pixels through a figure. From left to right it goes through the triangle to the left side, the one
// to the top or the bottom and the one to the right side; any of them may be missed.
class GpPathGradient::FigureRow
{
public:
    FigureRow(const GpPathGradient& brush, const Figure& figure, std::int64_t y) noexcept
        : m_brush(brush),
          m_figure(figure),
          m_down(static_cast<double>(y) + 0.5 - brush.m_y),
          m_left(static_cast<double>(figure.sides.left) - brush.m_x),
          m_right(static_cast<double>(figure.sides.right) - brush.m_x),
          m_top(static_cast<double>(figure.sides.top) - brush.m_y),
          m_bottom(static_cast<double>(figure.sides.bottom) - brush.m_y),
          m_part(m_down == 0 ? 0 : m_down / (m_down < 0 ? m_top : m_bottom))
    {
    }

    void Draw(std::int64_t x, DWORD mask, std::span<DWORD> out) const noexcept
    {
        // Right of the centre, by the row's part of the way to the upper or lower side: where the triangles
        // meet.
        const double leftEnd = std::min(0.0, m_left * m_part);
        const double rightBegin = std::max(0.0, m_right * m_part);
        const double begin = static_cast<double>(x) + 0.5 - m_brush.m_x;
        const auto pixelsTo = [&](double end) {
            return static_cast<std::size_t>(std::clamp(end, 0.0, static_cast<double>(out.size())));
        };
        const std::size_t nLeft = pixelsTo(std::ceil(leftEnd - begin));
        const std::size_t nMiddle = std::max(nLeft, pixelsTo(std::floor(rightBegin - begin) + 1));
        const auto& [topLeft, topRight, bottomRight, bottomLeft] = m_figure.corners;
        DrawAcross(m_left, topLeft, bottomLeft, begin, mask, out.first(nLeft));
        const bool bUp = m_down < 0;
        DrawAlong(bUp ? topLeft : bottomLeft, bUp ? topRight : bottomRight,
                  begin + static_cast<double>(nLeft), mask, out.subspan(nLeft, nMiddle - nLeft));
        DrawAcross(m_right, topRight, bottomRight, begin + static_cast<double>(nMiddle), mask,
                   out.subspan(nMiddle));
    }

private:
    // In a triangle whose side is the figure's left or right one.
    void DrawAcross(double side, const Channels& top, const Channels& bottom, double x, DWORD mask,
                    std::span<DWORD> out) const noexcept
    {
        if (out.empty()) return;
        const double height = m_bottom - m_top;
        const Channels side0 =
            Mixed(top, 1 + m_top / height, bottom, -m_top / height); // level with the centre
        const Channels step = Mixed(side0, 1 / side, m_brush.m_center, -1 / side);
        const Channels center = Mixed(Mixed(bottom, 1, top, -1), m_down / height, m_brush.m_center, 1);
        DrawRun(Mixed(step, x, center, 1), step, mask, out);
    }

    // In one whose side is the upper or the lower one.
    void DrawAlong(const Channels& left, const Channels& right, double x, DWORD mask,
                   std::span<DWORD> out) const noexcept
    {
        if (out.empty()) return;
        const double width = m_right - m_left;
        const Channels side0 = Mixed(left, 1 + m_left / width, right, -m_left / width); // above the centre
        const Channels step = Mixed(right, 1 / width, left, -1 / width);
        const Channels center = Mixed(m_brush.m_center, 1 - m_part, side0, m_part);
        DrawRun(Mixed(step, x, center, 1), step, mask, out);
    }

    const GpPathGradient& m_brush;
    const Figure& m_figure;
    // All from the path's centre.
    const double m_down;
    const double m_left;
    const double m_right;
    const double m_top;
    const double m_bottom;
    const double m_part; // of the way to the upper or lower side
};

GpPathGradient::GpPathGradient(const GpPath& path) : m_area(path.Inside())
{
    GpPath::Figure bounds = path.Figures().front();
    for (const GpPath::Figure& sides : path.Figures()) {
        m_figures.push_back({sides, {}});
        bounds = {std::min(bounds.left, sides.left), std::min(bounds.top, sides.top),
                  std::max(bounds.right, sides.right), std::max(bounds.bottom, sides.bottom)};
    }
    m_x = static_cast<double>(bounds.left + bounds.right) / 2;
    m_y = static_cast<double>(bounds.top + bounds.bottom) / 2;
    const ARGB white = 0xFFFFFFFF;
    SetCenter(white);
    SetSurround({&white, 1});
}

void GpPathGradient::SetCenter(ARGB color) noexcept
{
    m_center = ToChannels(color);
}

void GpPathGradient::MoveCenter(Point point) noexcept
{
    m_x = point.X;
    m_y = point.Y;
}

void GpPathGradient::SetSurround(std::span<const ARGB> colors) noexcept
{
    std::size_t n = 0;
    for (Figure& figure : m_figures)
        for (Channels& corner : figure.corners)
            corner = ToChannels(colors[std::min(n++, colors.size() - 1)]);
}

bool GpPathGradient::IsOpaque() const noexcept
{
    const auto isOpaque = [](const Channels& color) { return color[3] == 255; };
    return isOpaque(m_center) && std::all_of(m_figures.begin(), m_figures.end(), [&](const Figure& figure) {
               return std::all_of(figure.corners.begin(), figure.corners.end(), isOpaque);
           });
}

void GpPathGradient::Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept
{
    const std::int64_t nEnd = x + static_cast<std::int64_t>(out.size());
    for (const Figure& figure : m_figures) {
        const std::int64_t nLeft = std::max(x, figure.sides.left);
        const std::int64_t nRight = std::min(nEnd, figure.sides.right);
        if (y < figure.sides.top || y >= figure.sides.bottom || nLeft >= nRight) continue;
        FigureRow(*this, figure, y)
            .Draw(nLeft, mask,
                  out.subspan(static_cast<std::size_t>(nLeft - x), static_cast<std::size_t>(nRight - nLeft)));
    }
}

namespace DllExports {

GpStatus GdipCreatePathGradientFromPath(const GpPath* pPath, GpPathGradient** ppBrush)
{
    return MakeObject(ppBrush, [&] {
        if (!pPath) return InvalidParameter;
        if (pPath->Figures().empty()) return OutOfMemory;
        return Give<GpPathGradient>(ppBrush, *pPath);
    });
}

GpStatus GdipSetPathGradientCenterColor(GpPathGradient* pBrush, ARGB color)
{
    return Guarded([&] {
        if (!pBrush) return InvalidParameter;
        pBrush->SetCenter(color);
        return Ok;
    });
}

GpStatus GdipSetPathGradientCenterPointI(GpPathGradient* pBrush, const GpPoint* pPoint)
{
    return Guarded([&] {
        if (!pBrush || !pPoint) return InvalidParameter;
        pBrush->MoveCenter(*pPoint);
        return Ok;
    });
}

GpStatus GdipSetPathGradientSurroundColorsWithCount(GpPathGradient* pBrush, const ARGB* pColors, INT* pnCount)
{
    return Guarded([&] {
        if (!pBrush || !pColors || !pnCount || *pnCount < 1 ||
            static_cast<std::size_t>(*pnCount) > pBrush->Points())
            return InvalidParameter;
        pBrush->SetSurround({pColors, static_cast<std::size_t>(*pnCount)});
        return Ok;
    });
}

} // namespace DllExports

} // namespace Gdiplus

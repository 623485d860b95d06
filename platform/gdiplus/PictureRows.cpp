#include "platform/gdiplus/Scale.h"

#include "platform/gdi/Rect.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kx::gdiplus {

namespace {

// Positions beyond this are as far from any pixel as these.
constexpr double farAway = 1e12;

// How far the pixels of a stretch that is none are moved, a whole number of them; nothing for another.
std::optional<std::int64_t> Shift(const Stretch& stretch) noexcept
{
    const double shift = stretch.to - stretch.from;
    if (stretch.fromLength != stretch.toLength || shift != std::floor(shift) || std::abs(shift) > farAway)
        return std::nullopt;
    return static_cast<std::int64_t>(shift);
}

// The target's pixels whose centres a block covers.
std::pair<int, int> Covered(const Stretch& stretch) noexcept
{
    const auto pixelAt = [](double position) {
        return gdi::ToSide(
            static_cast<std::int64_t>(std::clamp(std::ceil(position - 0.5), -farAway, farAway)));
    };
    const auto [begin, end] = std::minmax({stretch.to, stretch.to + stretch.toLength});
    return {pixelAt(begin), pixelAt(end)};
}

} // namespace

PictureRows::PictureRows(const PixelView& from, const Stretch& columns, const Stretch& rows, const RECT& area)
    : m_from(from)
{
    const auto dx = Shift(columns);
    const auto dy = Shift(rows);
    if (!dx || !dy) {
        m_scaler.emplace(from, columns, rows, area);
        m_area = m_scaler->Area();
        if (!gdi::IsEmpty(m_area)) m_row.resize(static_cast<std::size_t>(m_area.right - m_area.left));
        return;
    }
    const auto [left, right] = Covered(columns);
    const auto [top, bottom] = Covered(rows);
    const RECT picture = gdi::Moved({0, 0, from.width, from.height}, *dx, *dy);
    m_area = gdi::Cut(gdi::Cut(area, picture), {left, top, right, bottom});
    m_column = static_cast<std::ptrdiff_t>(m_area.left - *dx);
    m_rowShift = static_cast<std::ptrdiff_t>(-*dy);
}

const DWORD* PictureRows::Row(int y) noexcept
{
    if (!m_scaler) return m_from.first + (y + m_rowShift) * m_from.stride + m_column;
    m_scaler->Row(y, m_row.data());
    return m_row.data();
}

} // namespace kx::gdiplus

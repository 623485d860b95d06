#include "platform/gdiplus/EncodedRows.h"

#include "platform/gdiplus/Blend.h"

#include <algorithm>

namespace kx::gdiplus {

namespace {

bool IsOpaque(const DWORD* row, int nWidth) noexcept
{
    DWORD all = ALPHA_BITS;
    for (int x = 0; x < nWidth; ++x)
        all &= row[x];
    return (all & ALPHA_BITS) == ALPHA_BITS;
}

std::vector<DWORD> RoomFor(const PixelView& view, Alpha changed)
{
    return std::vector<DWORD>(view.alpha == changed ? static_cast<std::size_t>(view.width) : 0);
}

} // namespace

RowsOverBlack::RowsOverBlack(const PixelView& view) : m_view(view), m_row(RoomFor(view, Alpha::Straight))
{
}

const DWORD* RowsOverBlack::Row(int y) noexcept
{
    const DWORD* const row = m_view.Row(y);
    if (m_row.empty() || IsOpaque(row, m_view.width)) return row;
    DWORD* const out = m_row.data();
    std::transform(row, row + m_view.width, out, ToMultiplied);
    return out;
}

StraightRows::StraightRows(const PixelView& view) : m_view(view), m_row(RoomFor(view, Alpha::Premultiplied))
{
}

const DWORD* StraightRows::Row(int y) noexcept
{
    const DWORD* const row = m_view.Row(y);
    if (m_row.empty()) return row;
    ToStraight(row, m_row.data(), m_view.width);
    return m_row.data();
}

} // namespace kx::gdiplus

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

} // namespace

RowsOverBlack::RowsOverBlack(const PixelView& view)
    : m_view(view), m_row(view.alpha == Alpha::Straight ? static_cast<std::size_t>(view.width) : 0)
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

} // namespace kx::gdiplus

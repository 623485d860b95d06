#pragma once

#include "platform/gdiplus/Brush.h"

#include <algorithm>

namespace kx::gdiplus {

// One colour, as pens have.
class SolidBrush : public Gdiplus::GpBrush
{
public:
    explicit SolidBrush(Gdiplus::ARGB color) noexcept : m_color(color) {}
    bool IsOpaque() const noexcept override { return m_color >> 24 == 255; }
    bool HasOneRow() const noexcept override { return true; }
    void Row(std::int64_t, std::int64_t, DWORD mask, std::span<DWORD> out) const noexcept override
    {
        std::fill(out.begin(), out.end(), m_color & mask);
    }

private:
    const Gdiplus::ARGB m_color;
};

} // namespace kx::gdiplus

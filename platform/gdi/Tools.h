#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

#include <memory>
#include <optional>

namespace kx::gdi {

class Pen final : public Object
{
public:
    static constexpr Kind KIND = Kind::Pen;

    Pen(UINT nStyle, int nWidth, COLORREF clr) noexcept
        : Object(KIND), style(nStyle), width(nWidth > 1 ? nWidth : 1), color(clr & COLOR_BITS)
    {
    }
    bool Draws() const noexcept { return style != PS_NULL; }

    const UINT style; // PS_SOLID or PS_NULL
    const int width;  // at least 1
    const COLORREF color;
};

class Brush final : public Object
{
public:
    static constexpr Kind KIND = Kind::Brush;

    // Without a colour it draws nothing.
    explicit Brush(std::optional<COLORREF> clr) noexcept
        : Object(KIND), color(clr.value_or(0) & COLOR_BITS), m_draws(clr.has_value())
    {
    }
    bool Draws() const noexcept { return m_draws; }

    const COLORREF color;

private:
    const bool m_draws;
};

// Supplied by the text operations: the font behind SYSTEM_FONT and DEFAULT_GUI_FONT.
std::shared_ptr<Object> MakeStockFont();

} // namespace kx::gdi

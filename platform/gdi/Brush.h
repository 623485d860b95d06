#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

#include <optional>

namespace kx::gdi {

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

} // namespace kx::gdi

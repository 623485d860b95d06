#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

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

} // namespace kx::gdi

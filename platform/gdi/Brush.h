#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

namespace kx::gdi {

class Brush final : public Object
{
public:
    static constexpr Kind KIND = Kind::Brush;

    // With BS_NULL the colour counts for nothing.
    Brush(UINT nStyle, COLORREF clr) noexcept : Object(KIND), style(nStyle), color(clr & COLOR_BITS) {}
    // A LOGBRUSH.
    int Describe(int nSize, void* pBuffer) const override;

    bool Draws() const noexcept { return style != BS_NULL; }

    const UINT style; // BS_SOLID or BS_NULL
    const COLORREF color;
};

} // namespace kx::gdi

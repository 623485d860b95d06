#pragma once

#include "include/platform/GdiPlusTypes.h"
#include "platform/gdiplus/Picture.h"

#include <array>

namespace kx::gdiplus {

// A colour matrix at work on runs of pixels, on colours that are not multiplied by the alpha. What leaves 0
// to 255 stays at its end, the rest goes to the nearest, halves up.
class ColorTransform
{
public:
    explicit ColorTransform(const Gdiplus::ColorMatrix& matrix) noexcept;

    // What the pixels that it gives for others mean: Opaque or Straight.
    Alpha Gives(Alpha from) const noexcept
    {
        return from == Alpha::Opaque && m_keepsAlpha ? Alpha::Opaque : Alpha::Straight;
    }
    void Apply(const DWORD* from, Alpha alpha, DWORD* to, int n) const noexcept;

private:
    // One channel: the shares of red, green, blue and alpha in it, and what is added.
    struct Sum
    {
        float red;
        float green;
        float blue;
        float alpha;
        float plus;
        friend bool operator==(const Sum&, const Sum&) = default;
        DWORD Of(DWORD pixel) const noexcept;
        bool IsWeight() const noexcept;
    };

    std::array<Sum, 4> m_sums; // red, green, blue, alpha
    bool m_keepsAlpha;         // and the colours don't depend on it
    bool m_weighs;             // and all of them are one weight of the three: some shade of grey
};

} // namespace kx::gdiplus

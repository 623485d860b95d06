#include "platform/gdiplus/ColorTransform.h"

#include "platform/gdiplus/Blend.h"

namespace kx::gdiplus {

namespace {

// An entry of 0.59 is in truth a little less, and 50 times it less than the half that 29.5 means. What lies
// so near a half counts as one; a matrix of four digits has no other values there.
constexpr float nearHalf = 1.0F / 8192;

constexpr float Limited(float f) noexcept
{
    f = f > 0 ? f : 0; // also for what is no number
    return f < 255 ? f : 255;
}

} // namespace

ColorTransform::ColorTransform(const Gdiplus::ColorMatrix& matrix) noexcept
{
    for (std::size_t n = 0; n < m_sums.size(); ++n)
        m_sums[n] = {matrix.m[0][n], matrix.m[1][n], matrix.m[2][n], matrix.m[3][n],
                     255 * matrix.m[4][n] + 0.5F + nearHalf};
    const auto& [red, green, blue, alpha] = m_sums;
    m_keepsAlpha =
        alpha == Sum{0, 0, 0, 1, 0.5F + nearHalf} && red.alpha == 0 && green.alpha == 0 && blue.alpha == 0;
    m_makesGray = red == green && green == blue;
}

[[gnu::always_inline]] inline DWORD ColorTransform::Sum::Of(DWORD pixel) const noexcept
{
    const auto in = [pixel](int nShift) {
        return static_cast<float>(static_cast<int>(pixel >> nShift & 255));
    };
    return static_cast<DWORD>(
        static_cast<int>(Limited(in(16) * red + in(8) * green + in(0) * blue + in(24) * alpha + plus)));
}

void ColorTransform::Apply(const DWORD* from, Alpha alpha, DWORD* to, int n) const noexcept
{
    if (alpha == Alpha::Premultiplied) {
        ToStraight(from, to, n);
        from = to;
    }
    const DWORD set = alpha == Alpha::Opaque ? ~gdi::COLOR_BITS : 0;
    const auto [red, green, blue, opacity] = m_sums;
    if (m_keepsAlpha && m_makesGray) {
        for (int x = 0; x < n; ++x) {
            const DWORD pixel = from[x] | set;
            const DWORD gray = red.Of(pixel & gdi::COLOR_BITS);
            to[x] = (pixel & ~gdi::COLOR_BITS) | gray << 16 | gray << 8 | gray;
        }
        return;
    }
    for (int x = 0; x < n; ++x) {
        const DWORD pixel = from[x] | set;
        to[x] = opacity.Of(pixel) << 24 | red.Of(pixel) << 16 | green.Of(pixel) << 8 | blue.Of(pixel);
    }
}

} // namespace kx::gdiplus

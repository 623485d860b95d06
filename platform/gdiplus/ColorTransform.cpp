#include "platform/gdiplus/ColorTransform.h"

namespace kx::gdiplus {

namespace {

// An entry of 0.59 is in truth a little less, and 50 times it less than the half that 29.5 means. What lies
// so near a half counts as one; a matrix of four digits has no other values there.
constexpr float nearHalf = 1.0F / 8192;

constexpr float Channel(DWORD pixel, int nShift) noexcept
{
    return static_cast<float>(static_cast<int>(pixel >> nShift & 255));
}

constexpr DWORD Cut(float f) noexcept
{
    return static_cast<DWORD>(static_cast<int>(f));
}

constexpr float Limited(float f) noexcept
{
    f = f > 0 ? f : 0; // also for what is no number
    return f < 255 ? f : 255;
}

// Shades of grey, each the same weight of a pixel's colours.
struct Grays
{
    float red;
    float green;
    float blue;
    float plus;
    DWORD set; // of each pixel before
};

void Weigh(const Grays& grays, const DWORD* from, DWORD* to, int n) noexcept
{
    const auto [red, green, blue, plus, set] = grays;
    for (int x = 0; x < n; ++x) {
        const DWORD pixel = from[x];
        const DWORD gray =
            Cut(Channel(pixel, 16) * red + Channel(pixel, 8) * green + Channel(pixel, 0) * blue + plus);
        to[x] = ((pixel | set) & ALPHA_BITS) | gray << 16 | gray << 8 | gray;
    }
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
    m_weighs = m_keepsAlpha && red == green && green == blue && red.IsWeight();
}

// Whether it can't leave 0 to 255, by more than what floats are off.
bool ColorTransform::Sum::IsWeight() const noexcept
{
    return red >= 0 && green >= 0 && blue >= 0 && plus >= 0 && 255 * (red + green + blue) + plus < 255.9F;
}

[[gnu::always_inline]] inline DWORD ColorTransform::Sum::Of(DWORD pixel) const noexcept
{
    return Cut(Limited(Channel(pixel, 16) * red + Channel(pixel, 8) * green + Channel(pixel, 0) * blue +
                       Channel(pixel, 24) * alpha + plus));
}

void ColorTransform::Apply(const DWORD* from, Alpha alpha, DWORD* to, int n) const noexcept
{
    const DWORD set = alpha == Alpha::Opaque ? ALPHA_BITS : 0;
    const auto [red, green, blue, opacity] = m_sums;
    if (m_weighs) return Weigh({red.red, red.green, red.blue, red.plus, set}, from, to, n);
    for (int x = 0; x < n; ++x) {
        const DWORD pixel = from[x] | set;
        to[x] = opacity.Of(pixel) << 24 | red.Of(pixel) << 16 | green.Of(pixel) << 8 | blue.Of(pixel);
    }
}

} // namespace kx::gdiplus

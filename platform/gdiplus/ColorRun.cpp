#include "platform/gdiplus/ColorRun.h"

#include <algorithm>

namespace kx::gdiplus {

namespace {

// To round by cutting off. The little more lets what is a half but for the errors of its sums go up; other
// values lie further from one than that.
constexpr double toNearest = 0.5 + 1.0 / (std::int64_t{1} << 36);

constexpr DWORD Cut(double channel) noexcept
{
    return static_cast<DWORD>(static_cast<int>(channel));
}

} // namespace

void DrawRun(const Channels& first, const Channels& step, DWORD mask, std::span<DWORD> out) noexcept
{
    const auto [blue, green, red, alpha] = Mixed(first, 1, {1, 1, 1, 1}, toNearest);
    const auto [blueStep, greenStep, redStep, alphaStep] = step;
    const DWORD color = (Cut(alpha) << 24 | Cut(red) << 16 | Cut(green) << 8 | Cut(blue)) & mask;
    if (step == Channels{}) return std::fill(out.begin(), out.end(), color);

    const int nCount = static_cast<int>(out.size());
    DWORD* pixels = out.data();
    if (alphaStep == 0) {
        const DWORD fixedAlpha = color & 0xFF000000;
        for (int n = 0; n < nCount; ++n)
            pixels[n] = Cut(red + n * redStep) << 16 | Cut(green + n * greenStep) << 8 |
                        Cut(blue + n * blueStep) | fixedAlpha;
        return;
    }
    for (int n = 0; n < nCount; ++n)
        pixels[n] = (Cut(alpha + n * alphaStep) << 24 | Cut(red + n * redStep) << 16 |
                     Cut(green + n * greenStep) << 8 | Cut(blue + n * blueStep)) &
                    mask;
}

} // namespace kx::gdiplus

#include "platform/gdiplus/Calls.h"
#include "platform/gdiplus/Graphics.h"
#include "platform/gdiplus/Scale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <iterator>
#include <optional>

using namespace kx::gdiplus;

namespace Gdiplus {

// How pictures are to be drawn.
class GpImageAttributes
{
public:
    std::optional<ColorMatrix> matrix;

private:
    kx::LiveHandle m_live;
};

namespace {

// An entry of 0.59 is in truth a little less, and 50 times it less than the half that 29.5 means. What lies
// so near a half counts as one; a matrix of four digits has no other values there.
constexpr float nearHalf = 1.0F / 8192;

constexpr float Channel(DWORD pixel, int nShift) noexcept
{
    return static_cast<float>(static_cast<int>(pixel >> nShift & 255));
}

// A colour matrix at work on runs of pixels, on colours that are not multiplied by the alpha. What leaves 0
// to 255 stays at its end, the rest goes to the nearest, halves up.
class ColorTransform
{
public:
    explicit ColorTransform(const ColorMatrix& matrix) noexcept
    {
        for (std::size_t n = 0; n < m_sums.size(); ++n)
            m_sums[n] = {matrix.m[0][n], matrix.m[1][n], matrix.m[2][n], matrix.m[3][n],
                         255 * matrix.m[4][n] + 0.5F + nearHalf};
    }
    // Tells what the pixels mean that it gives for others: Opaque or Straight.
    Alpha Gives(Alpha from) const noexcept
    {
        const Sum& opacity = m_sums[3];
        const bool bKeeps = opacity == Sum{0, 0, 0, 1, 0.5F + nearHalf};
        return from == Alpha::Opaque && bKeeps ? Alpha::Opaque : Alpha::Straight;
    }
    void Apply(const DWORD* from, Alpha alpha, DWORD* to, int n) const noexcept
    {
        const DWORD set = alpha == Alpha::Opaque ? ALPHA_BITS : 0;
        const auto [red, green, blue, opacity] = m_sums;
        if (Gives(Alpha::Opaque) == Alpha::Opaque && red == green && red == blue) { // shades of grey
            for (int x = 0; x < n; ++x)
                to[x] = ((from[x] | set) & ALPHA_BITS) | red.Of(from[x] | set) * 0x010101;
            return;
        }
        for (int x = 0; x < n; ++x) {
            const DWORD pixel = from[x] | set;
            to[x] = opacity.Of(pixel) << 24 | red.Of(pixel) << 16 | green.Of(pixel) << 8 | blue.Of(pixel);
        }
    }

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
        DWORD Of(DWORD pixel) const noexcept
        {
            const float sum = Channel(pixel, 16) * red + Channel(pixel, 8) * green +
                              Channel(pixel, 0) * blue + Channel(pixel, 24) * alpha + plus;
            const float least = std::max(0.F, sum); // in this order 0 for what is no number
            return static_cast<DWORD>(static_cast<int>(std::min(least, 255.F)));
        }
    };

    std::array<Sum, 4> m_sums; // red, green, blue, alpha
};

// Whether two pictures share memory, by their first and last rows.
bool MayOverlap(const PixelView& a, const PixelView& b) noexcept
{
    return std::less<>()(a.first, b.Row(b.height)) && std::less<>()(b.first, a.Row(a.height));
}

// Draws a block of a picture over a block of the target, both in the graphics' coordinates, through the
// matrix if there is one. The picture may lie where the target does. Throws std::bad_alloc and draws nothing
// then.
void Draw(const Target& target, const PixelView& from, const Stretch& columns, const Stretch& rows,
          const ColorMatrix* pMatrix = nullptr)
{
    std::optional<kx::gdi::Surface> copy;
    if (MayOverlap(from, target.pixels)) {
        copy = CopyPixels(from);
        if (!copy) throw std::bad_alloc();
    }
    PictureRows picture(copy ? ViewOf(*copy, from.alpha) : from, columns, rows, target.reach);
    const RECT area = picture.Area();
    if (kx::gdi::IsEmpty(area)) return;

    std::optional<ColorTransform> transform;
    std::vector<DWORD> changed;
    if (pMatrix) {
        transform.emplace(*pMatrix);
        changed.resize(static_cast<std::size_t>(area.right - area.left));
    }
    const Alpha alpha = transform ? transform->Gives(from.alpha) : from.alpha;
    for (int y = area.top; y < area.bottom; ++y) {
        const DWORD* row = nullptr; // made where the clip leaves something of it
        kx::gdi::ForEachPart(target.clip, {area.left, y, area.right, y + 1}, [&](const RECT& part) {
            if (!row) row = picture.Row(y);
            if (transform && row != changed.data()) {
                transform->Apply(row, from.alpha, changed.data(), area.right - area.left);
                row = changed.data();
            }
            Blend(row + (part.left - area.left), alpha, target.pixels.Row(y) + part.left, target.pixels.alpha,
                  part.right - part.left);
        });
    }
}

Stretch WholeOver(int nPicture, int nTo, int nToLength) noexcept
{
    return {0, static_cast<double>(nPicture), static_cast<double>(nTo), static_cast<double>(nToLength)};
}

bool IsFinite(const ColorMatrix& matrix) noexcept
{
    return std::all_of(std::begin(matrix.m), std::end(matrix.m), [](const auto& row) {
        return std::all_of(std::begin(row), std::end(row), [](float f) { return std::isfinite(f); });
    });
}

} // namespace

namespace DllExports {

GpStatus GdipDrawImageI(GpGraphics* pGraphics, GpImage* pImage, INT x, INT y)
{
    return Guarded([&] {
        if (!pImage) return InvalidParameter;
        const PixelView from = pImage->Pixels();
        return GdipDrawImageRectI(pGraphics, pImage, x, y, from.width, from.height);
    });
}

GpStatus GdipDrawImageRectI(GpGraphics* pGraphics, GpImage* pImage, INT x, INT y, INT nWidth, INT nHeight)
{
    return Guarded([&] {
        if (!pGraphics || !pImage) return InvalidParameter;
        const PixelView from = pImage->Pixels();
        return pGraphics->On([&](const Target& target) {
            Draw(target, from, WholeOver(from.width, x, nWidth), WholeOver(from.height, y, nHeight));
        });
    });
}

GpStatus GdipDrawImageRectRect(GpGraphics* pGraphics, GpImage* pImage, REAL x, REAL y, REAL nWidth,
                               REAL nHeight, REAL xSrc, REAL ySrc, REAL nSrcWidth, REAL nSrcHeight,
                               GpUnit unit, const GpImageAttributes* pAttributes, DrawImageAbort, void*)
{
    return Guarded([&] {
        const REAL values[] = {x, y, nWidth, nHeight, xSrc, ySrc, nSrcWidth, nSrcHeight};
        if (!pGraphics || !pImage ||
            !std::all_of(std::begin(values), std::end(values), [](REAL n) { return std::isfinite(n); }))
            return InvalidParameter;
        if (unit != UnitPixel) return NotImplemented;
        const PixelView from = pImage->Pixels();
        return pGraphics->On([&](const Target& target) {
            Draw(target, from, {xSrc, nSrcWidth, x, nWidth}, {ySrc, nSrcHeight, y, nHeight},
                 pAttributes && pAttributes->matrix ? &*pAttributes->matrix : nullptr);
        });
    });
}

GpStatus GdipCreateImageAttributes(GpImageAttributes** ppAttributes)
{
    return MakeObject(ppAttributes, [&] { return Give<GpImageAttributes>(ppAttributes); });
}

GpStatus GdipDisposeImageAttributes(GpImageAttributes* pAttributes)
{
    return EndObject(pAttributes);
}

GpStatus GdipSetImageAttributesColorMatrix(GpImageAttributes* pAttributes, ColorAdjustType type, int bEnable,
                                           const ColorMatrix* pMatrix, const ColorMatrix* pGray,
                                           ColorMatrixFlags flags)
{
    return Guarded([&] {
        if (!pAttributes || (bEnable && !pMatrix)) return InvalidParameter;
        if (type != ColorAdjustTypeDefault || flags != ColorMatrixFlagsDefault || pGray)
            return NotImplemented;
        if (bEnable && !IsFinite(*pMatrix)) return InvalidParameter;
        pAttributes->matrix = bEnable ? std::optional(*pMatrix) : std::nullopt;
        return Ok;
    });
}

} // namespace DllExports

} // namespace Gdiplus

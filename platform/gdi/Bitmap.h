#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

#include <memory>
#include <utility>
#include <vector>

namespace kx::gdi {

// A bitmap: 32-bit pixels whatever its declared depth, which stays with it for GetObjectA and GetDIBits, as
// does its palette.
class Bitmap final : public Object
{
public:
    static constexpr Kind KIND = Kind::Bitmap;

    Bitmap(Surface pixels, WORD nDepth, std::vector<RGBQUAD> colors = {}, bool bFromFile = false)
        : Object(KIND),
          depth(nDepth),
          palette(std::move(colors)),
          fromFile(bFromFile),
          surface(std::move(pixels))
    {
    }
    // A BITMAP.
    int Describe(int nSize, void* pBuffer) const override;

    int Width() const noexcept { return surface.Width(); }
    int Height() const noexcept { return surface.Height(); }

    const WORD depth;
    // A bitmap of 8 bits and less has as many colours as the file declared, at most 2 to the depth.
    const std::vector<RGBQUAD> palette;
    const bool fromFile; // rows count as padded to 32 bits, not 16
    Surface surface;
};

// The bytes of a row of `nWidth` pixels that is padded to a multiple of `nPadding` bits.
constexpr std::size_t RowBytes(int nWidth, WORD nDepth, std::size_t nPadding) noexcept
{
    return (static_cast<std::size_t>(nWidth) * nDepth + nPadding - 1) / nPadding * (nPadding / 8);
}

// An icon: pixels whose high byte is their opacity.
class Icon final : public Object
{
public:
    static constexpr Kind KIND = Kind::Icon;

    // Brought to a size, 0 for the image's own; null for a lack of memory. A pixel is the mean of those that
    // it stands for.
    static std::shared_ptr<Icon> Make(Surface image, SIZE size);
    explicit Icon(Surface image) : Object(KIND), surface(std::move(image)) {}

    const Surface surface;
};

} // namespace kx::gdi

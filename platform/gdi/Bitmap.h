#pragma once

#include "platform/gdi/BlackRest.h"
#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

#include <utility>
#include <vector>

namespace kx::gdi {

// A bitmap: 32-bit pixels whatever its declared depth, which stays with it for GetObjectA and GetDIBits, as
// does its palette (depths of 8 bits and less; as many entries as the file declared, at most 2 to the depth).
// A decoder may leave a pixel's index into the palette in its high byte: GetDIBits gives that index back for
// as long as the pixel has its colour, even if the palette holds the colour twice.
class Bitmap final : public Object
{
public:
    static constexpr Kind KIND = Kind::Bitmap;

    Bitmap(Surface pixels, WORD nDepth, std::vector<RGBQUAD> colors = {}, bool bFromFile = false)
        : Object(KIND),
          depth(nDepth),
          palette(std::move(colors)),
          fromFile(bFromFile),
          m_surface(std::move(pixels))
    {
    }
    // A black one of 32 bits, of pixels that may be anything.
    explicit Bitmap(Surface unset)
        : Object(KIND), depth(32), fromFile(false), m_surface(std::move(unset)), m_rest(WholeOf(m_surface))
    {
    }
    // A BITMAP.
    int Describe(int nSize, void* pBuffer) const override;

    int Width() const noexcept { return m_surface.Width(); }
    int Height() const noexcept { return m_surface.Height(); }
    // The pixels, all of them set.
    Surface& Pixels() noexcept
    {
        m_rest.Lay(m_surface);
        return m_surface;
    }
    const Surface& Pixels() const noexcept
    {
        m_rest.Lay(m_surface);
        return m_surface;
    }
    // For one who asks for the rest, or leaves what is written to it, at each use.
    Surface& UnsetPixels() noexcept { return m_surface; }
    BlackRest& Rest() noexcept { return m_rest; }

    const WORD depth;
    const std::vector<RGBQUAD> palette;
    const bool fromFile; // rows count as padded to 32 bits, not 16

private:
    mutable Surface m_surface; // what is black in it is so for readers too
    mutable BlackRest m_rest;
};

// The bytes of a row of `nWidth` pixels that is padded to a multiple of `nPadding` bits.
constexpr std::size_t RowBytes(int nWidth, WORD nDepth, std::size_t nPadding) noexcept
{
    return (static_cast<std::size_t>(nWidth) * nDepth + nPadding - 1) / nPadding * (nPadding / 8);
}

} // namespace kx::gdi

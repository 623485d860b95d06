#pragma once

#include "include/platform/GdiPlusTypes.h"
#include "platform/gdi/Surface.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace kx::gdiplus {

// The meaning of a pixel's high byte.
enum class Alpha
{
    Opaque,  // nothing: the pixel hides what lies below
    Straight // opacity, by which the colours are not multiplied
};

// Pixels that lie elsewhere, 0xAARRGGBB, the top row first.
struct PixelView
{
    DWORD* first = nullptr;
    std::ptrdiff_t stride = 0; // from one row to the next, in pixels
    int width = 0;
    int height = 0;
    Alpha alpha = Alpha::Opaque;

    DWORD* Row(int y) const noexcept { return first + y * stride; }
};

inline PixelView ViewOf(gdi::Surface& surface, Alpha alpha) noexcept
{
    return {surface.Row(0), surface.Stride(), surface.Width(), surface.Height(), alpha};
}

// A property of a picture: so many values of that type as bytes.
struct Property
{
    WORD type = 0;
    std::vector<std::uint8_t> value;
};

// The frames of a picture that has several. Keeps the bytes they are decoded from, not the frames.
class Frames
{
public:
    virtual ~Frames() = default;
    virtual unsigned Count() const noexcept = 0;
    // Makes that frame, of which there is one, the picture: may draw on the surface given, or replace it. On
    // failure it stays.
    virtual Gdiplus::Status Select(unsigned nFrame, gdi::Surface& surface, Alpha& alpha) = 0;
    virtual std::optional<Property> FindProperty(Gdiplus::PROPID id) const = 0;
};

// Pixels with what is known of them.
struct Picture
{
    gdi::Surface surface;
    Alpha alpha = Alpha::Opaque;
    Gdiplus::PixelFormat format = Gdiplus::PixelFormat32bppRGB; // of what it was decoded from
    std::unique_ptr<Frames> frames{};                           // null for one frame
    GUID dimension = Gdiplus::FrameDimensionPage;

    PixelView View() noexcept { return ViewOf(surface, alpha); }
};

// The bits of a pixel that its opacity takes.
inline constexpr DWORD ALPHA_BITS = ~gdi::COLOR_BITS;

// The format of pixels of so many bits: indices up to 8.
KX_API Gdiplus::PixelFormat FormatOfDepth(int nBits) noexcept;

// OutOfMemory for a size beyond the limits, GenericError for one of 0 or below.
KX_API Gdiplus::Status CheckSize(std::int64_t nWidth, std::int64_t nHeight) noexcept;

// A copy of the pixels alone; nothing for a lack of memory.
std::optional<gdi::Surface> CopyPixels(const PixelView& view);

} // namespace kx::gdiplus

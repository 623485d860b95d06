#pragma once

#include "platform/gdiplus/Picture.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kx::gdiplus {

// Pixels as vectors of their channels, blue, green, red, alpha. Both compilers turn this arithmetic into
// vector instructions of whatever processor they build for.
using Quad = float __attribute__((vector_size(16)));
using Bytes = std::uint8_t __attribute__((vector_size(16)));  // four pixels
using Words = std::uint16_t __attribute__((vector_size(16))); // two pixels
using Ints = std::int32_t __attribute__((vector_size(16)));

inline Quad Fill(float f) noexcept
{
    return Quad{f, f, f, f};
}

// Two of four pixels.
inline Words LowPixels(const Bytes& pixels) noexcept
{
    return reinterpret_cast<Words>(
        __builtin_shufflevector(pixels, Bytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
}

// The channels go from 0 to 255.
inline Bytes Joined(const Words& low, const Words& high) noexcept
{
    return __builtin_shufflevector(reinterpret_cast<Bytes>(low), reinterpret_cast<Bytes>(high), 0, 2, 4, 6, 8,
                                   10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}

inline Quad ToQuad(DWORD pixel) noexcept
{
    const auto bytes = reinterpret_cast<Bytes>(Ints{static_cast<std::int32_t>(pixel)});
    const auto ints =
        reinterpret_cast<Ints>(__builtin_shufflevector(LowPixels(bytes), Words{}, 0, 8, 1, 9, 2, 10, 3, 11));
    return __builtin_convertvector(ints, Quad);
}

// Rounds to the nearest; channels from 0 to 255.
inline DWORD ToPixel(const Quad& quad) noexcept
{
    const Ints ints = __builtin_convertvector(quad + Fill(0.5F), Ints);
    // Every second byte, and of those again.
    const auto words = reinterpret_cast<Words>(ints);
    const auto bytes = reinterpret_cast<Words>(Joined(words, words));
    const auto pixel = reinterpret_cast<Ints>(Joined(bytes, bytes));
    return static_cast<DWORD>(pixel[0]);
}

// One direction of a picture's block stretched over a block of a target, in pixels of each. A negative length
// reaches to the other side of its beginning, and mirrors.
struct Stretch
{
    double from;
    double fromLength;
    double to;
    double toLength;
};

// The pixels of the picture that one of the target is made of: the first and the last one by their weights,
// those between by 1.
struct Span
{
    int first;
    int last; // at least `first`; where they are equal only `firstWeight` counts
    float firstWeight;
    float lastWeight;
    float sum; // of all weights
};

// The spans of a run of the target's pixels.
class Axis
{
public:
    // For those from `begin` to `end` whose centres the picture's pixels 0 to `limit` cover. Throws
    // std::bad_alloc.
    Axis(const Stretch& stretch, int limit, int begin, int end);

    int Begin() const noexcept { return m_nBegin; }
    int End() const noexcept { return m_nBegin + static_cast<int>(m_spans.size()); }
    const Span& operator[](int n) const noexcept { return m_spans[static_cast<std::size_t>(n - m_nBegin)]; }
    const std::vector<Span>& Spans() const noexcept { return m_spans; }

private:
    int m_nBegin;
    std::vector<Span> m_spans;
};

// Makes the rows of a picture's block stretched over a block of a target. Each direction goes by itself:
// reducing takes the mean of what a target pixel covers, enlarging goes linearly from one pixel's centre to
// the next's, up to the centres at the block's edges. Colours count by their alpha, so that what is
// transparent has no colour to give. The work and the memory are bounded by the wanted area and the part of
// the picture under it, whatever the size of the blocks.
class Scaler
{
public:
    // `area`: the target's pixels that are wanted. Throws std::bad_alloc.
    Scaler(const PixelView& from, const Stretch& columns, const Stretch& rows, const RECT& area);

    // The part of the area that the picture covers; may be empty.
    RECT Area() const noexcept;
    // A row of that part, pixels that mean what the picture's do, opaque ones with 255 in the high byte.
    // Going through the rows in turn, up or down, reads each row of the picture about once.
    void Row(int y, DWORD* out) noexcept;

private:
    struct Held
    {
        int row = -1; // of the picture; -1: none
        std::vector<Quad> quads;
    };
    const Quad* Across(int nRow) noexcept;
    void Sum(const Span& span) noexcept;

    PixelView m_from;
    Axis m_columns;
    Axis m_rows;
    std::array<Held, 2> m_held; // rows stretched across, which two rows of the target share
    std::vector<Quad> m_sum;
};

// The whole of a picture stretched over the whole of a surface, of pixels that mean what the picture's do.
// Throws std::bad_alloc.
void Scale(const PixelView& from, gdi::Surface& to);

// The rows of a picture's block over a block of a target, as they are where none is stretched. The picture's
// pixels must stay while this lives.
class PictureRows
{
public:
    // `area`: the target's pixels that are wanted. Throws std::bad_alloc.
    PictureRows(const PixelView& from, const Stretch& columns, const Stretch& rows, const RECT& area);

    // The part of the area that the picture covers; may be empty.
    RECT Area() const noexcept { return m_area; }
    // A row of that part, which stays until the next call. Pixels mean what the picture's do.
    const DWORD* Row(int y) noexcept;

private:
    PixelView m_from;
    RECT m_area;
    std::optional<Scaler> m_scaler; // none where the pixels are taken as they are
    std::vector<DWORD> m_row;       // scaled
    std::ptrdiff_t m_column = 0;    // of the picture at the area's left, if not scaled
    std::ptrdiff_t m_rowShift = 0;  // from the target's rows to the picture's
};

} // namespace kx::gdiplus

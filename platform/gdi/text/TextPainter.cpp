#include "platform/gdi/text/TextPainter.h"

#include "platform/Cpu.h"
#include "platform/gdi/Rect.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace kx::gdi {

namespace {

// The part of a letter that is seen.
struct Rows
{
    DWORD* out;
    std::ptrdiff_t outStride;
    const std::int16_t* weights;
    std::ptrdiff_t weightStride;
    int width;
    int height;
    DWORD color;
};

// Moves the bytes of pixels towards the colour's by their weights, to the nearest value.
void MixRow(DWORD* out, const std::int16_t* weights, int nPixels, DWORD color) noexcept
{
    std::array<std::uint8_t, sizeof(DWORD)> to;
    std::memcpy(to.data(), &color, sizeof(color));
    auto* bytes = reinterpret_cast<std::uint8_t*>(out);
    for (int n = 0; n < nPixels * Glyph::CHANNELS; ++n) {
        const int nWay = to[static_cast<std::size_t>(n % Glyph::CHANNELS)] - bytes[n];
        bytes[n] = static_cast<std::uint8_t>(bytes[n] + ((nWay * weights[n] + Glyph::WHOLE / 2) >> 15));
    }
}

void MixPlain(const Rows& rows) noexcept
{
    for (int y = 0; y < rows.height; ++y)
        MixRow(rows.out + y * rows.outStride, rows.weights + y * rows.weightStride, rows.width, rows.color);
}

#if defined(__x86_64__)
// The same in blocks.
KX_AVX2 void MixAvx2(const Rows& rows) noexcept
{
    const __m256i color = _mm256_cvtepu8_epi16(_mm_set1_epi32(static_cast<int>(rows.color)));
    for (int y = 0; y < rows.height; ++y) {
        DWORD* const out = rows.out + y * rows.outStride;
        const std::int16_t* const weights = rows.weights + y * rows.weightStride;
        int x = 0;
        for (; x + Glyph::BLOCK <= rows.width; x += Glyph::BLOCK) {
            auto* const block = reinterpret_cast<__m128i*>(out + x);
            const auto* const weight = reinterpret_cast<const __m256i*>(weights + x * Glyph::CHANNELS);
            const __m256i from = _mm256_cvtepu8_epi16(_mm_loadu_si128(block));
            const __m256i way =
                _mm256_mulhrs_epi16(_mm256_sub_epi16(color, from), _mm256_loadu_si256(weight));
            const __m256i mixed = _mm256_add_epi16(from, way);
            _mm_storeu_si128(
                block, _mm_packus_epi16(_mm256_castsi256_si128(mixed), _mm256_extracti128_si256(mixed, 1)));
        }
        MixRow(out + x, weights + x * Glyph::CHANNELS, rows.width - x, rows.color);
    }
}
#else
void MixAvx2(const Rows&) noexcept
{
}
#endif

} // namespace

TextPainter::TextPainter(DeviceContext& context, Font& font)
    : m_context(context),
      m_font(font),
      m_face(font.Face()),
      m_canvas(context.Paint()),
      m_pixel(ToPixel(context.textColor))
{
}

void TextPainter::Draw(const TextLine& line, int x, int y, const RECT& clip)
{
    const FontMetrics& metrics = m_face.Metrics();
    if (m_context.backMode == OPAQUE)
        Bar(x, y, line.width, clip, ToPixel(m_context.backColor), metrics.Height());
    const int nBase = y + metrics.ascent;
    int pen = x;
    for (std::size_t n = 0; n < line.text.size() && pen < clip.right; ++n) {
        const Glyph& glyph = m_face.Get(line.text[n]);
        Cover(glyph, pen, nBase, clip);
        if (static_cast<int>(n) == line.mark) Bar(pen, nBase + 1, glyph.advance, clip, m_pixel, 1);
        pen += glyph.advance;
    }
    if (m_font.Underline()) Bar(x, nBase + 1, line.width, clip, m_pixel, 1);
    if (m_font.StrikeOut()) Bar(x, nBase - metrics.ascent / 3, line.width, clip, m_pixel, 1);
}

void TextPainter::Bar(int x, int y, int nWidth, const RECT& clip, DWORD pixel, int nHeight)
{
    const RECT bar = Cut({x, y, x + nWidth, y + nHeight}, clip);
    FillArea(m_canvas, bar, pixel);
}

// (x, y): the pen on the base line.
void TextPainter::Cover(const Glyph& glyph, int x, int y, const RECT& clip)
{
    const RECT box{x + glyph.left, y - glyph.top, x + glyph.left + glyph.width, y - glyph.top + glyph.rows};
    ForEachPart(m_canvas.clip, Cut(box, clip),
                [&](const RECT& part) { Blend(glyph, box.left, box.top, part); });
}

void TextPainter::Blend(const Glyph& glyph, int x, int y, const RECT& part)
{
    int nWidth = part.right - part.left;
    // A letter that is seen whole is drawn in blocks to its end: what the last covers behind it stays as it
    // is.
    if (nWidth == glyph.width && part.left + glyph.stride <= m_canvas.surface.Width()) nWidth = glyph.stride;
    const std::ptrdiff_t nStride = std::ptrdiff_t{glyph.stride} * Glyph::CHANNELS;
    const Rows rows{m_canvas.surface.Row(part.top) + part.left,
                    m_canvas.surface.Stride(),
                    glyph.weights.data() + (part.top - y) * nStride + (part.left - x) * Glyph::CHANNELS,
                    nStride,
                    nWidth,
                    part.bottom - part.top,
                    m_pixel};
    HasAvx2() ? MixAvx2(rows) : MixPlain(rows);
}

} // namespace kx::gdi

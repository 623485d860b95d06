#include "platform/gdi/text/TextPainter.h"

#include "platform/gdi/Fill.h"
#include "platform/gdi/Rect.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kx::gdi {

namespace {

constexpr int kBlock = Glyph::BLOCK;
using Bytes = std::uint8_t __attribute__((vector_size(16)));
using Words = std::uint16_t __attribute__((vector_size(16)));
using Pixels = DWORD __attribute__((vector_size(16)));

Bytes Load(const void* p)
{
    Bytes bytes;
    std::memcpy(&bytes, p, sizeof(bytes));
    return bytes;
}

Words Low(Bytes bytes)
{
    return reinterpret_cast<Words>(
        __builtin_shufflevector(bytes, Bytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
}

Words High(Bytes bytes)
{
    return reinterpret_cast<Words>(__builtin_shufflevector(bytes, Bytes{}, 8, 24, 9, 25, 10, 26, 11, 27, 12,
                                                           28, 13, 29, 14, 30, 15, 31));
}

// Each moved from `a` to `b` by a coverage of 0 to 255, to the nearest value.
Words Mixed(Words a, Words b, Words coverage)
{
    const Words sum = (a << 8) - a + (b - a) * coverage + 128; // what is below 0 on the way comes back
    return (sum + (sum >> 8)) >> 8;                            // by 255
}

// A block of pixels, of whose bytes each has its coverage.
Bytes MixBlock(Bytes from, Bytes color, Bytes coverage)
{
    const auto low = reinterpret_cast<Bytes>(Mixed(Low(from), Low(color), Low(coverage)));
    const auto high = reinterpret_cast<Bytes>(Mixed(High(from), High(color), High(coverage)));
    return __builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}

// At most three pixels, put together in registers: a block loaded from where its pixels have just been stored
// one by one is waited for.
void MixRest(DWORD* out, int nPixels, Bytes color, Bytes coverage)
{
    const Pixels from{out[0], nPixels > 1 ? out[1] : 0, nPixels > 2 ? out[2] : 0, 0};
    const auto mixed = reinterpret_cast<Pixels>(MixBlock(reinterpret_cast<Bytes>(from), color, coverage));
    out[0] = mixed[0];
    if (nPixels > 1) out[1] = mixed[1];
    if (nPixels > 2) out[2] = mixed[2];
}

// Whether a block lies beside the letter, as many do.
bool IsEmpty(const std::uint8_t* coverage)
{
    std::uint64_t low, high;
    std::memcpy(&low, coverage, sizeof(low));
    std::memcpy(&high, coverage + sizeof(low), sizeof(high));
    return (low | high) == 0;
}

RECT Common(const RECT& a, const RECT& b)
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

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
    const TEXTMETRICA& metrics = m_face.Metrics();
    if (m_context.backMode == OPAQUE)
        Bar(x, y, line.width, clip, ToPixel(m_context.backColor), metrics.tmHeight);
    const int nBase = y + metrics.tmAscent;
    int pen = x;
    for (std::size_t n = 0; n < line.text.size() && pen < clip.right; ++n) {
        const Glyph& glyph = m_face.Get(line.text[n]);
        Cover(glyph, pen, nBase, clip);
        if (static_cast<int>(n) == line.mark) Bar(pen, nBase + 1, glyph.advance, clip, m_pixel, 1);
        pen += glyph.advance;
    }
    if (m_font.Underline()) Bar(x, nBase + 1, line.width, clip, m_pixel, 1);
    if (m_font.StrikeOut()) Bar(x, nBase - metrics.tmAscent / 3, line.width, clip, m_pixel, 1);
}

void TextPainter::Bar(int x, int y, int nWidth, const RECT& clip, DWORD pixel, int nHeight)
{
    const RECT bar = Common({x, y, x + nWidth, y + nHeight}, clip);
    if (bar.left >= bar.right || bar.top >= bar.bottom) return;
    FillRects(m_canvas, {&bar, 1}, pixel);
}

// (x, y): the pen on the base line.
void TextPainter::Cover(const Glyph& glyph, int x, int y, const RECT& clip)
{
    const RECT box{x + glyph.left, y - glyph.top, x + glyph.left + glyph.width, y - glyph.top + glyph.rows};
    for (const RECT& visible : m_canvas.clip) {
        const RECT part = Common(Common(box, clip), visible);
        if (part.left < part.right && part.top < part.bottom) Blend(glyph, box.left, box.top, part);
    }
}

void TextPainter::Blend(const Glyph& glyph, int x, int y, const RECT& part)
{
    const auto color = reinterpret_cast<Bytes>(Pixels{m_pixel, m_pixel, m_pixel, m_pixel});
    int nWidth = part.right - part.left;
    // A letter that is seen whole is drawn in blocks to its end: what the last covers behind it stays as it
    // is.
    if (nWidth == glyph.width && part.left + glyph.stride <= m_canvas.surface.Width()) nWidth = glyph.stride;
    for (int row = part.top; row < part.bottom; ++row) {
        const std::ptrdiff_t nFirst = static_cast<std::ptrdiff_t>(row - y) * glyph.stride + part.left - x;
        const std::uint8_t* coverage = glyph.coverage.data() + nFirst * std::ptrdiff_t{sizeof(DWORD)};
        DWORD* out = m_canvas.surface.Row(row) + part.left;
        int nLeft = nWidth;
        for (; nLeft >= kBlock; nLeft -= kBlock, out += kBlock, coverage += sizeof(Bytes)) {
            if (IsEmpty(coverage)) continue;
            const Bytes mixed = MixBlock(Load(out), color, Load(coverage));
            std::memcpy(out, &mixed, sizeof(mixed));
        }
        if (nLeft > 0) MixRest(out, nLeft, color, Load(coverage));
    }
}

} // namespace kx::gdi

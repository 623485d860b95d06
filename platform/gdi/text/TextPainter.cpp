#include "platform/gdi/text/TextPainter.h"

#include "platform/gdi/Fill.h"
#include "platform/gdi/Rect.h"

#include <algorithm>

namespace kx::gdi {

namespace {

// Moves a pixel's channels towards a colour's, by a coverage of 0 to 255.
DWORD Mixed(DWORD from, DWORD to, unsigned nCoverage)
{
    DWORD mixed = from & ~COLOR_BITS;
    for (const unsigned nShift : {0u, 8u, 16u}) {
        const int a = static_cast<int>(from >> nShift & 0xFF);
        const int b = static_cast<int>(to >> nShift & 0xFF);
        const int step = (b - a) * static_cast<int>(nCoverage);
        mixed |= static_cast<DWORD>(a + (step + (step < 0 ? -127 : 127)) / 255) << nShift;
    }
    return mixed;
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
    const RECT inSurface = m_canvas.ToSurface(clip);
    const int nBase = y + metrics.tmAscent;
    int pen = x;
    for (std::size_t n = 0; n < line.text.size() && pen < clip.right; ++n) {
        const Glyph& glyph = m_face.Get(line.text[n]);
        Cover(glyph, pen + m_canvas.origin.x, nBase + m_canvas.origin.y, inSurface);
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
    const RECT inSurface = m_canvas.ToSurface(bar);
    FillRects(m_canvas, {&inSurface, 1}, pixel);
}

// (x, y): the pen on the base line, in the surface's coordinates.
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
    for (int row = part.top; row < part.bottom; ++row) {
        const unsigned char* coverage =
            glyph.coverage.data() + static_cast<std::ptrdiff_t>(row - y) * glyph.width - x;
        DWORD* pixels = m_canvas.surface.Row(row);
        for (int column = part.left; column < part.right; ++column) {
            if (const unsigned n = coverage[column]; n == 255)
                pixels[column] = (pixels[column] & ~COLOR_BITS) | m_pixel;
            else if (n != 0)
                pixels[column] = Mixed(pixels[column], m_pixel, n);
        }
    }
}

} // namespace kx::gdi

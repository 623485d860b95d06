// Text on device contexts. Where a text is drawn, the lock of the pixels is taken before that of the texts,
// so that a call that measures, or draws in memory, never waits for the display.

#include "platform/Errno.h"
#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/FontFace.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

using namespace kx::gdi;

namespace {

// Lays a colour over pixels by its coverage of each, of which most have none.
void MixRow(DWORD* out, const std::uint8_t* coverage, int nPixels, DWORD color) noexcept
{
    for (int n = 0; n < nPixels; ++n)
        if (coverage[n] != 0) out[n] = Mixed(color, out[n], coverage[n]);
}

// Draws lines on a context with its font and colours.
class TextPainter
{
public:
    TextPainter(const DeviceContext& context, Font& font, const Canvas& canvas) KX_REQUIRES(textLock);

    // Draws a line whose cell begins at (x, y) in the context's coordinates, within `clip`.
    void Draw(const TextLine& line, int x, int y, const RECT& clip) KX_REQUIRES(textLock);

private:
    void Cover(const Glyph& glyph, int x, int y, const RECT& clip);
    void Bar(int x, int y, int nWidth, const RECT& clip, DWORD pixel, int nHeight);

    const DeviceContext& m_context;
    Font& m_font;
    FontFace& m_face;
    const Canvas& m_canvas;
    DWORD m_pixel;
};

TextPainter::TextPainter(const DeviceContext& context, Font& font, const Canvas& canvas)
    : m_context(context),
      m_font(font),
      m_face(font.Face()),
      m_canvas(canvas),
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
    ForEachPart(m_canvas.clip, Cut(box, clip), [&](const RECT& part) {
        const std::uint8_t* row =
            glyph.coverage.data() + (part.top - box.top) * glyph.width + (part.left - box.left);
        for (int nRow = part.top; nRow < part.bottom; ++nRow, row += glyph.width)
            MixRow(m_canvas.surface.Row(nRow) + part.left, row, part.right - part.left, m_pixel);
    });
}

constexpr int kFar = INT_MAX / 4; // letters never lie further out than that

std::string_view TextOf(const char* pszText, int nLength)
{
    if (!pszText) return {};
    return nLength < 0 ? std::string_view(pszText)
                       : std::string_view(pszText, static_cast<std::size_t>(nLength));
}

int Near(std::int64_t position)
{
    return static_cast<int>(std::clamp<std::int64_t>(position, -kFar, kFar));
}

RECT Near(const RECT& rect)
{
    return {Near(rect.left), Near(rect.top), Near(rect.right), Near(rect.bottom)};
}

// A context and the font in it, held for one operation.
struct Writer
{
    explicit Writer(HDC hDC) : context(FindAs<DeviceContext>(hDC))
    {
        if (!context) return;
        font = static_cast<Font*>(context->CurrentFont());
        NeedLetters();
    }
    explicit operator bool() const { return font != nullptr; }

    std::shared_ptr<DeviceContext> context;
    Font* font = nullptr; // stays while it is selected
};

// A text in lines, and the height of one.
struct Lines
{
    Lines(FontFace& face, std::string_view text, UINT nFormat, int nRoom) KX_REQUIRES(textLock)
        : nHeight(face.Metrics().Height()), all(BreakLines(face, text, nFormat, nRoom))
    {
    }
    int TotalHeight() const { return Near(std::int64_t{nHeight} * static_cast<std::int64_t>(all.size())); }

    const int nHeight;
    const std::vector<TextLine> all;
};

int StartOf(const TextLine& line, const RECT& rect, UINT nFormat)
{
    if (nFormat & DT_CENTER)
        return Near(std::int64_t{rect.left} + (std::int64_t{rect.right} - rect.left - line.width) / 2);
    if (nFormat & DT_RIGHT) return Near(std::int64_t{rect.right} - line.width);
    return rect.left;
}

int TopOf(const RECT& rect, int nHeight, UINT nFormat)
{
    if (!(nFormat & DT_SINGLELINE)) return rect.top;
    if (nFormat & DT_VCENTER) return rect.top + (rect.bottom - rect.top - nHeight) / 2;
    return nFormat & DT_BOTTOM ? rect.bottom - nHeight : rect.top;
}

// Moves the right and bottom of a rectangle to the text's.
int Measure(const Writer& writer, std::string_view text, RECT& rect, UINT nFormat)
{
    const kx::sync::MutexLock lock(textLock);
    const RECT room = Near(rect);
    const Lines lines(writer.font->Face(), text, nFormat, room.right - room.left);
    int nWidth = 0;
    for (const TextLine& line : lines.all)
        nWidth = std::max(nWidth, line.width);
    rect.right = Near(std::int64_t{room.left} + nWidth);
    rect.bottom = Near(std::int64_t{room.top} + lines.TotalHeight());
    return lines.TotalHeight();
}

int Draw(const Writer& writer, std::string_view text, const RECT& rect, UINT nFormat)
{
    const Canvas canvas = writer.context->Paint();
    const kx::sync::MutexLock lock(textLock);
    const RECT room = Near(rect);
    const Lines lines(writer.font->Face(), text, nFormat, room.right - room.left);
    const RECT clip = nFormat & DT_NOCLIP ? RECT{-kFar, -kFar, kFar, kFar} : room;
    TextPainter painter(*writer.context, *writer.font, canvas);
    int y = TopOf(room, lines.TotalHeight(), nFormat);
    for (const TextLine& line : lines.all) {
        if (y >= clip.bottom) break;
        painter.Draw(line, StartOf(line, room, nFormat), y, clip);
        y += lines.nHeight;
    }
    return lines.TotalHeight();
}

} // namespace

int DrawTextA(HDC hDC, const char* pszText, int nLength, RECT* pRect, UINT nFormat)
try {
    const Writer writer(hDC);
    if (!writer || !pszText || !pRect) return 0;
    const std::string_view text = TextOf(pszText, nLength);
    return nFormat & DT_CALCRECT ? Measure(writer, text, *pRect, nFormat)
                                 : Draw(writer, text, *pRect, nFormat);
} catch (...) {
    return kx::NoMemory();
}

int TextOutA(HDC hDC, int x, int y, const char* pszText, int nLength)
try {
    const Writer writer(hDC);
    if (!writer || !pszText) return 0;
    Draw(writer, TextOf(pszText, nLength), {Near(x), Near(y), kFar, kFar},
         DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP);
    return 1;
} catch (...) {
    return kx::NoMemory();
}

int GetTextExtentPoint32A(HDC hDC, const char* pszText, int nLength, SIZE* pSize)
try {
    const Writer writer(hDC);
    if (!writer || !pszText || !pSize) return 0;
    RECT rect;
    Measure(writer, TextOf(pszText, nLength), rect, DT_SINGLELINE | DT_NOPREFIX);
    *pSize = {rect.right, rect.bottom};
    return 1;
} catch (...) {
    return kx::NoMemory();
}

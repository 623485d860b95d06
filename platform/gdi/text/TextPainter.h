#pragma once

#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/text/Font.h"
#include "platform/gdi/text/Layout.h"

namespace kx::gdi {

// Draws lines on a context with its font and colours. Made and used under the text lock.
class TextPainter
{
public:
    TextPainter(DeviceContext& context, Font& font);

    // Draws a line whose cell begins at (x, y) in the context's coordinates, within `clip`.
    void Draw(const TextLine& line, int x, int y, const RECT& clip);

private:
    void Cover(const Glyph& glyph, int x, int y, const RECT& clip);
    void Blend(const Glyph& glyph, int x, int y, const RECT& part);
    void Bar(int x, int y, int nWidth, const RECT& clip, DWORD pixel, int nHeight);

    DeviceContext& m_context;
    Font& m_font;
    FontFace& m_face;
    Canvas m_canvas;
    DWORD m_pixel;
};

} // namespace kx::gdi

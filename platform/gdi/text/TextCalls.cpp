// DrawTextA and its kin.

#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/text/TextLock.h"
#include "platform/gdi/text/TextPainter.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <vector>

using namespace kx::gdi;

namespace {

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
    explicit Writer(HDC hDC) : lock(textLock), context(static_cast<DeviceContext*>(FindHeldContext(hDC)))
    {
        if (context) font = static_cast<Font*>(context->CurrentFont());
    }
    explicit operator bool() const { return font != nullptr; }

    std::lock_guard<kx::sync::WordLock> lock;
    DeviceContext* context;
    Font* font = nullptr; // stays while it is selected
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

int Draw(Writer& writer, std::string_view text, RECT& rect, UINT nFormat)
{
    FontFace& face = writer.font->Face();
    const RECT room = Near(rect);
    const int nLine = face.Metrics().Height();
    TextLine plain;
    std::vector<TextLine> broken;
    std::span<const TextLine> lines(&plain, 1);
    if (!TakePlainLine(face, text, nFormat, plain))
        lines = broken = BreakLines(face, text, nFormat, room.right - room.left);
    const int nHeight = Near(std::int64_t{nLine} * static_cast<std::int64_t>(lines.size()));
    if (nFormat & DT_CALCRECT) {
        int nWidth = 0;
        for (const TextLine& line : lines)
            nWidth = std::max(nWidth, line.width);
        rect.right = Near(std::int64_t{room.left} + nWidth);
        rect.bottom = Near(std::int64_t{room.top} + nHeight);
        return nHeight;
    }
    const RECT clip = nFormat & DT_NOCLIP ? RECT{-kFar, -kFar, kFar, kFar} : room;
    TextPainter painter(*writer.context, *writer.font);
    int y = TopOf(room, nHeight, nFormat);
    for (const TextLine& line : lines) {
        if (y >= clip.bottom) break;
        painter.Draw(line, StartOf(line, room, nFormat), y, clip);
        y += nLine;
    }
    return nHeight;
}

} // namespace

int DrawTextA(HDC hDC, const char* pszText, int nLength, RECT* pRect, UINT nFormat)
try {
    Writer writer(hDC);
    return writer && pszText && pRect ? Draw(writer, TextOf(pszText, nLength), *pRect, nFormat) : 0;
} catch (const std::bad_alloc&) {
    return 0;
}

int TextOutA(HDC hDC, int x, int y, const char* pszText, int nLength)
try {
    Writer writer(hDC);
    if (!writer || !pszText) return 0;
    RECT rect{Near(x), Near(y), kFar, kFar};
    Draw(writer, TextOf(pszText, nLength), rect, DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP);
    return 1;
} catch (const std::bad_alloc&) {
    return 0;
}

int GetTextExtentPoint32A(HDC hDC, const char* pszText, int nLength, SIZE* pSize)
try {
    Writer writer(hDC);
    if (!writer || !pszText || !pSize) return 0;
    RECT rect;
    Draw(writer, TextOf(pszText, nLength), rect, DT_SINGLELINE | DT_NOPREFIX | DT_CALCRECT);
    *pSize = {rect.right, rect.bottom};
    return 1;
} catch (const std::bad_alloc&) {
    return 0;
}

#include "platform/gdi/FontFace.h"

#include "include/platform/CodePage.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kx::gdi {

namespace {

// Bytes that are no letters become U+FFFD.
std::u32string Decode(std::string_view text)
{
    if (kx::text::IsAscii(text)) return {text.begin(), text.end()};
    const std::string units = kx::text::Iconv::For(GetACP(), kx::text::Iconv::Direction::ToUtf32)
                                  .ConvertLossy(text, std::string_view("\xFD\xFF\0\0", 4));
    std::u32string decoded(units.size() / sizeof(char32_t), U'\0');
    std::memcpy(decoded.data(), units.data(), decoded.size() * sizeof(char32_t));
    return decoded;
}

int Measure(FontFace& face, std::u32string_view text) KX_REQUIRES(textLock)
{
    std::int64_t width = 0;
    for (const char32_t ch : text)
        width += face.Get(ch).advance;
    return static_cast<int>(std::min<std::int64_t>(width, INT32_MAX / 2));
}

// Letters that take no room: what would be a control sign, but for the tab, which is drawn as a blank.
bool IsUnseen(char32_t ch)
{
    return ch < U' ' || ch == 0x7F;
}

// Takes the "&" signs out: one marks the letter behind it, two stand for one.
void TakePrefixes(TextLine& line)
{
    if (line.text.find(U'&') == std::u32string::npos) return;
    std::u32string kept;
    for (std::size_t n = 0; n < line.text.size(); ++n) {
        if (line.text[n] == U'&') {
            if (++n == line.text.size()) break;
            if (line.text[n] != U'&') line.mark = static_cast<int>(kept.size());
        }
        kept += line.text[n];
    }
    line.text = std::move(kept);
}

// The place where a line that is too long is cut: behind the last blank that fits, or else behind the last
// letter that does.
std::size_t FindBreak(FontFace& face, std::u32string_view text, int nRoom) KX_REQUIRES(textLock)
{
    std::size_t nBlank = 0;
    std::int64_t width = 0;
    for (std::size_t n = 0; n < text.size(); ++n) {
        width += face.Get(text[n]).advance;
        const bool bBlank = text[n] == U' ';
        if (!bBlank && width > nRoom) return nBlank > 0 ? nBlank : std::max<std::size_t>(n, 1);
        if (bBlank || text[n] >= 0x2E80) nBlank = n + 1; // Chinese text breaks behind any letter
    }
    return text.size();
}

// Cuts a line into pieces that fit into the room.
void BreakWords(FontFace& face, const TextLine& line, int nRoom, std::vector<TextLine>& pieces)
    KX_REQUIRES(textLock)
{
    std::u32string_view rest = line.text;
    int mark = line.mark; // in the rest
    for (std::size_t nCut; (nCut = FindBreak(face, rest, nRoom)) < rest.size(); rest.remove_prefix(nCut)) {
        const bool bMarked = mark < static_cast<int>(nCut);
        pieces.push_back({std::u32string(rest.substr(0, nCut)), 0, bMarked ? mark : -1});
        mark = bMarked ? -1 : mark - static_cast<int>(nCut);
    }
    pieces.push_back({std::u32string(rest), 0, mark});
}

} // namespace

std::vector<TextLine> BreakLines(FontFace& face, std::string_view text, UINT nFormat, int nRoom)
{
    const std::u32string all = Decode(text);
    const bool bSingle = (nFormat & DT_SINGLELINE) != 0;
    std::vector<TextLine> lines;
    TextLine line;
    const auto end = [&]() KX_REQUIRES(textLock) {
        if (!(nFormat & DT_NOPREFIX)) TakePrefixes(line);
        if ((nFormat & DT_WORDBREAK) && !bSingle)
            BreakWords(face, line, nRoom, lines);
        else
            lines.push_back(std::move(line));
        line = {};
    };
    for (std::size_t n = 0; n < all.size(); ++n) {
        const char32_t ch = all[n];
        if (ch == U'\t') {
            line.text += U' ';
        } else if (!bSingle && (ch == U'\r' || ch == U'\n')) {
            if (ch == U'\r' && n + 1 < all.size() && all[n + 1] == U'\n') ++n;
            end();
        } else if (!IsUnseen(ch)) {
            line.text += ch;
        }
    }
    end();
    for (TextLine& each : lines)
        each.width = Measure(face, each.text);
    return lines;
}

} // namespace kx::gdi

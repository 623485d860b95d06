#include "platform/text/CharWalk.h"

#include <cstring>

namespace kx::text {

namespace {

// Whether a byte may be one of a longer character.
bool IsTail(char ch) noexcept
{
    return IsTrail(ch) || IsDigit(ch);
}

// Tells which of a text's positions begin a character, when asked in rising order: it never looks back behind
// what it knows already, so that a search takes time in proportion to the text alone.
class CharStarts
{
public:
    CharStarts(std::string_view text, std::size_t start, bool bDoubleByte) noexcept
        : m_text(text), m_known(start), m_bDoubleByte(bDoubleByte)
    {
    }
    bool At(std::size_t pos) noexcept
    {
        if (!m_bDoubleByte || pos >= m_text.size()) return true;
        if (pos >= m_known) m_known = CharStartFrom(m_text, pos, true, m_known);
        return m_known == pos;
    }

private:
    const std::string_view m_text;
    std::size_t m_known; // a character begins here
    const bool m_bDoubleByte;
};

template <class Sought>
std::size_t FindStart(std::string_view text, Sought sought, std::size_t start, bool bDoubleByte) noexcept
{
    CharStarts starts(text, start, bDoubleByte);
    for (auto pos = text.find(sought, start); pos != text.npos; pos = text.find(sought, pos + 1))
        if (starts.At(pos)) return pos;
    return text.npos;
}

} // namespace

std::size_t CharStartFrom(std::string_view text, std::size_t pos, bool bDoubleByte,
                          std::size_t known) noexcept
{
    if (!bDoubleByte || pos >= text.size()) return pos;
    std::size_t at = pos; // behind a byte that no character goes on after, a new one begins
    while (at > known && (IsLead(text[at - 1]) || IsDigit(text[at - 1])))
        --at;
    while (at < pos)
        at += CharLength(text, at, true);
    return at;
}

std::size_t Find(std::string_view text, char ch, std::size_t start) noexcept
{
    return FindStart(text, ch, start, IsTail(ch) && IsDoubleByte());
}

std::size_t Find(std::string_view text, std::string_view sub, std::size_t start) noexcept
{
    return FindStart(text, sub, start, IsDoubleByte());
}

std::size_t FindLast(std::string_view text, char ch) noexcept
{
    if (!IsTail(ch) || !IsDoubleByte()) return text.rfind(ch);
    CharStarts starts(text, 0, true);
    std::size_t last = text.npos;
    for (auto pos = text.find(ch); pos != text.npos; pos = text.find(ch, pos + 1))
        if (starts.At(pos)) last = pos;
    return last;
}

int CompareNoCase(std::string_view a, std::string_view b) noexcept
{
    const bool bDoubleByte = IsDoubleByte();
    std::size_t i = 0;
    for (; i < a.size() && i < b.size(); ++i) {
        if (a[i] == b[i]) {
            const bool bPair = CharLength(a, i, bDoubleByte) == 2 && CharLength(b, i, bDoubleByte) == 2;
            if (!bPair) continue;
            ++i;
            if (a[i] == b[i]) continue;
            return static_cast<unsigned char>(a[i]) - static_cast<unsigned char>(b[i]);
        }
        const int diff =
            static_cast<unsigned char>(ToLower(a[i])) - static_cast<unsigned char>(ToLower(b[i]));
        if (diff != 0) return diff;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

void LowerAscii(char* text, std::size_t length) noexcept
{
    const bool bDoubleByte = IsDoubleByte();
    const std::string_view view(text, length);
    for (std::size_t i = 0; i < length; i += CharLength(view, i, bDoubleByte))
        text[i] = ToLower(text[i]);
}

std::string_view CutAtChar(std::string_view text, std::size_t max) noexcept
{
    if (text.size() <= max) return text;
    if (!IsDoubleByte()) {
        const auto continues = [&](std::size_t pos) {
            return (static_cast<unsigned char>(text[pos]) & 0xC0) == 0x80;
        };
        std::size_t cut = max;
        while (cut > 0 && max - cut < 3 && continues(cut)) // no character has more bytes behind its first
            --cut;
        return text.substr(0, continues(cut) ? max : cut);
    }
    std::size_t cut = max;
    while (CharStartFrom(text, cut, true) != cut)
        --cut;
    return text.substr(0, cut);
}

std::size_t CopyCut(std::string_view text, char* buffer, std::size_t size) noexcept
{
    if (size == 0) return 0;
    text = CutAtChar(text, size - 1);
    if (!text.empty()) std::memcpy(buffer, text.data(), text.size()); // an empty text may lie nowhere
    buffer[text.size()] = '\0';
    return text.size();
}

} // namespace kx::text

#include "platform/text/CharWalk.h"

#include <algorithm>
#include <cstring>

namespace kx::text {

namespace {

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
        const bool bStart = IsCharStart(m_text.substr(m_known), pos - m_known, true);
        m_known = bStart ? pos : pos + 1; // behind a trail byte the next character begins
        return bStart;
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

std::size_t Find(std::string_view text, char ch, std::size_t start) noexcept
{
    return FindStart(text, ch, start, IsTrail(ch) && IsDoubleByte());
}

std::size_t Find(std::string_view text, std::string_view sub, std::size_t start) noexcept
{
    return FindStart(text, sub, start, IsDoubleByte());
}

std::size_t FindLast(std::string_view text, char ch) noexcept
{
    if (!IsTrail(ch) || !IsDoubleByte()) return text.rfind(ch);
    CharStarts starts(text, 0, true);
    std::size_t last = text.npos;
    for (auto pos = text.find(ch); pos != text.npos; pos = text.find(ch, pos + 1))
        if (starts.At(pos)) last = pos;
    return last;
}

std::string_view Trim(std::string_view text) noexcept
{
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
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
    return text.substr(0, IsCharStart(text, max, true) ? max : max - 1);
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

#include "platform/text/CharWalk.h"

#include <algorithm>
#include <cstring>

namespace kx::text {

std::size_t Find(std::string_view text, char ch, std::size_t start) noexcept
{
    const bool bDoubleByte = IsTrail(ch) && IsDoubleByte();
    for (auto pos = text.find(ch, start); pos != text.npos; pos = text.find(ch, pos + 1))
        if (IsCharStart(text, pos, bDoubleByte)) return pos;
    return text.npos;
}

std::size_t Find(std::string_view text, std::string_view sub, std::size_t start) noexcept
{
    const bool bDoubleByte = IsDoubleByte();
    for (auto pos = text.find(sub, start); pos != text.npos; pos = text.find(sub, pos + 1))
        if (IsCharStart(text, pos, bDoubleByte)) return pos;
    return text.npos;
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
        while (max > 0 && (static_cast<unsigned char>(text[max]) & 0xC0) == 0x80)
            --max;
        return text.substr(0, max);
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

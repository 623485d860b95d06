#include "platform/registry/Escape.h"

#include "platform/text/CharWalk.h"

#include <charconv>

namespace kx::registry {

namespace {

bool IsPlain(char ch) noexcept
{
    return ch > ' ' && ch < '\x7F' && std::string_view("%=;[]@\"'").find(ch) == std::string_view::npos;
}

} // namespace

std::string Escape(std::string_view bytes)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const bool bDoubleByte = text::IsDoubleByte();
    std::string escaped;
    escaped.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = text::CharLength(bytes, i, bDoubleByte);
        for (const char ch : bytes.substr(i, length)) {
            if (length == 1 && IsPlain(ch)) {
                escaped += ch;
            } else {
                const auto byte = static_cast<unsigned char>(ch);
                escaped.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
            }
        }
        i += length;
    }
    return escaped;
}

std::optional<std::string> Unescape(std::string_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        if (text.size() - i < 3) return std::nullopt;
        unsigned byte = 0;
        const char* end = text.data() + i + 3;
        if (std::from_chars(end - 2, end, byte, 16).ptr != end) return std::nullopt;
        bytes += static_cast<char>(byte);
        i += 2;
    }
    return bytes;
}

} // namespace kx::registry

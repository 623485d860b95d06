#include "platform/services/systemd/UnitName.h"

#include "platform/services/systemd/UnitText.h"
#include "platform/text/Conversion.h"

#include <charconv>

namespace kx::systemd {

namespace {

constexpr std::string_view kSuffix = ".service";
constexpr std::size_t kMaxUnit = 253; // so that a directory of drop-ins, `UNIT.d`, can have its name

// A point at the beginning would hide the file, and an `@` at either end make no unit or only a template.
bool IsPlain(std::string_view name, std::size_t at) noexcept
{
    const char ch = name[at];
    const bool bLetterOrDigit =
        (ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z');
    if (bLetterOrDigit || ch == ':' || ch == '_' || ch == '-') return true;
    if (ch == '.') return at > 0;
    return ch == '@' && at > 0 && at + 1 < name.size();
}

} // namespace

std::optional<std::string> UnitOf(const CString& name)
{
    const auto utf8 = text::ToUtf8(name.View());
    if (!utf8 || utf8->empty() || utf8->find_first_of("/\\") != utf8->npos) return std::nullopt;
    std::string unit;
    for (std::size_t at = 0; at < utf8->size(); ++at) {
        if (IsPlain(*utf8, at))
            unit += (*utf8)[at];
        else
            AppendHex(unit, (*utf8)[at]);
        if (unit.size() > kMaxUnit - kSuffix.size()) return std::nullopt;
    }
    return unit.append(kSuffix);
}

std::optional<CString> NameOf(std::string_view unit)
{
    if (!unit.ends_with(kSuffix)) return std::nullopt;
    const std::string_view escaped = unit.substr(0, unit.size() - kSuffix.size());
    std::string utf8;
    for (std::size_t at = 0; at < escaped.size(); ++at) {
        unsigned byte = 0;
        if (escaped.substr(at, 2) != "\\x") {
            utf8 += escaped[at];
        } else {
            const std::string_view digits = escaped.substr(at + 2, 2);
            std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
            utf8 += static_cast<char>(byte);
            at += 3;
        }
    }
    // What isn't escaped in our way would name another unit.
    const auto text = text::FromUtf8(utf8);
    if (!text || text->find('\0') != text->npos) return std::nullopt;
    CString name{std::string_view(*text)};
    if (UnitOf(name) != unit) return std::nullopt;
    return name;
}

} // namespace kx::systemd

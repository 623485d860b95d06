#include "platform/text/Conversion.h"

#include "include/platform/CodePage.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"
#include "platform/sync/PerThread.h"
#include "platform/text/CharWalk.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <cwctype>
#include <memory>
#include <new>

namespace kx::text {

namespace {

// The C library has a lock of its own in these, which a fork's child may find taken for ever.
constinit sync::Mutex g_lock;
[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Text, []() -> sync::Mutex& { return g_lock; });

const char* UnicodeForm(Iconv::Direction direction)
{
    switch (direction) {
    case Iconv::Direction::ToUtf8:
    case Iconv::Direction::FromUtf8:
        return "UTF-8";
    case Iconv::Direction::ToUtf16:
    case Iconv::Direction::FromUtf16:
        return "UTF-16LE";
    default:
        return "UTF-32LE";
    }
}

const char* NameOf(UINT nCodePage)
{
    return nCodePage == CP_UTF8 ? "UTF-8" : "GB18030";
}

bool IsTo(Iconv::Direction direction)
{
    return direction == Iconv::Direction::ToUtf8 || direction == Iconv::Direction::ToUtf16 ||
           direction == Iconv::Direction::ToUtf32;
}

// GB18030's values for bytes and characters that the system's converter doesn't know. The characters are
// for private use. Those from FD 30 81 30 on are in the user's own part of the code, for the standard's bytes
// for them are read as others.
constexpr std::pair<char32_t, std::string_view> kExtras[] = {
    {0x20AC, "\x80"},
    {0xE78D, "\x84\x31\x82\x36"},
    {0xE78E, "\x84\x31\x82\x38"},
    {0xE78F, "\x84\x31\x82\x37"},
    {0xE790, "\x84\x31\x82\x39"},
    {0xE791, "\x84\x31\x83\x30"},
    {0xE792, "\x84\x31\x83\x31"},
    {0xE793, "\x84\x31\x83\x32"},
    {0xE794, "\x84\x31\x83\x33"},
    {0xE795, "\x84\x31\x83\x34"},
    {0xE796, "\x84\x31\x83\x35"},
    {0xE81E, "\x82\x35\x90\x37"},
    {0xE826, "\x82\x35\x90\x38"},
    {0xE82B, "\x82\x35\x90\x39"},
    {0xE82C, "\x82\x35\x91\x30"},
    {0xE832, "\x82\x35\x91\x31"},
    {0xE843, "\x82\x35\x91\x32"},
    {0xE854, "\x82\x35\x91\x33"},
    {0xE864, "\x82\x35\x91\x34"},
    {0xE816, "\xFD\x30\x81\x30"},
    {0xE817, "\xFD\x30\x81\x31"},
    {0xE818, "\xFD\x30\x81\x32"},
    {0xE831, "\xFD\x30\x81\x33"},
    {0xE83B, "\xFD\x30\x81\x34"},
    {0xE855, "\xFD\x30\x81\x35"},
};

} // namespace

Iconv& Iconv::For(UINT nCodePage, Direction direction)
{
    static sync::PerThread<std::array<std::unique_ptr<Iconv>, 12>> converters;
    auto& converter =
        converters.Get()[static_cast<std::size_t>(direction) + (nCodePage == CP_UTF8 ? 6u : 0u)];
    // One that couldn't be opened may be there next time: the C library doesn't always tell a lack of memory.
    if (!converter || !*converter) converter = std::make_unique<Iconv>(nCodePage, direction);
    return *converter;
}

Iconv::Iconv(const char* pszTo, const char* pszFrom)
{
    {
        const sync::MutexLock lock(g_lock);
        m_cd = iconv_open(pszTo, pszFrom);
    }
    if (!*this && errno == ENOMEM) throw std::bad_alloc();
}

Iconv::Iconv(UINT nCodePage, Direction direction)
    : Iconv(IsTo(direction) ? UnicodeForm(direction) : NameOf(nCodePage),
            IsTo(direction) ? NameOf(nCodePage) : UnicodeForm(direction))
{
    if (nCodePage == CP_UTF8) return;
    Iconv spell(UnicodeForm(direction), "UTF-32LE");
    for (const auto& [unit, bytes] : kExtras) {
        std::string form = spell.Convert({reinterpret_cast<const char*>(&unit), sizeof unit}).value_or("");
        if (IsTo(direction))
            m_extras.emplace_back(bytes, std::move(form));
        else
            m_extras.emplace_back(std::move(form), bytes);
    }
}

Iconv::~Iconv()
{
    const sync::MutexLock lock(g_lock);
    if (*this) iconv_close(m_cd);
}

// Converts as far as it goes; true when all of it went.
bool Iconv::Run(std::string_view& bytes, std::string& out)
{
    if (!*this) return bytes.empty();
    std::array<char, 512> chunk;
    char* from = const_cast<char*>(bytes.data());
    std::size_t left = bytes.size();
    bool bDone = true;
    while (left > 0) {
        char* to = chunk.data();
        std::size_t room = chunk.size();
        const bool bFailed = iconv(m_cd, &from, &left, &to, &room) == static_cast<std::size_t>(-1);
        const int error = errno;
        out.append(chunk.data(), static_cast<std::size_t>(to - chunk.data()));
        if (bFailed && error != E2BIG) {
            bDone = false;
            break;
        }
    }
    iconv(m_cd, nullptr, nullptr, nullptr, nullptr);
    bytes = std::string_view(from, left);
    return bDone;
}

bool Iconv::TakeExtra(std::string_view& bytes, std::string& out) const
{
    for (const auto& [from, to] : m_extras) {
        if (!bytes.starts_with(from)) continue;
        out += to;
        bytes.remove_prefix(from.size());
        return true;
    }
    return false;
}

bool Iconv::Append(std::string_view& bytes, std::string& out)
{
    while (!Run(bytes, out))
        if (!TakeExtra(bytes, out)) return false;
    return true;
}

std::optional<std::string> Iconv::Convert(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size() * 2);
    if (!Append(bytes, out)) return std::nullopt;
    return out;
}

std::string Iconv::ConvertLossy(std::string_view bytes, std::string_view replacement, std::size_t unit)
{
    std::string out;
    out.reserve(bytes.size() * 2);
    while (!Append(bytes, out)) {
        out += replacement;
        bytes.remove_prefix(std::min(unit, bytes.size()));
    }
    return out;
}

bool IsAscii(std::string_view text) noexcept
{
    return std::all_of(text.begin(), text.end(), [](char ch) { return static_cast<signed char>(ch) >= 0; });
}

std::optional<std::string> ToUtf8(std::string_view codePageText)
{
    if (IsAscii(codePageText)) return std::string(codePageText);
    return Iconv::For(GetACP(), Iconv::Direction::ToUtf8).Convert(codePageText);
}

std::optional<std::string> FromUtf8(std::string_view utf8)
{
    if (IsAscii(utf8)) return std::string(utf8);
    return Iconv::For(GetACP(), Iconv::Direction::FromUtf8).Convert(utf8);
}

std::string FromUtf8Lossy(std::string_view utf8)
{
    if (IsAscii(utf8)) return std::string(utf8);
    return Iconv::For(GetACP(), Iconv::Direction::FromUtf8).ConvertLossy(utf8, "?");
}

std::string FoldCase(std::string_view utf8)
{
    std::string folded(utf8);
    if (IsAscii(utf8)) {
        std::transform(folded.begin(), folded.end(), folded.begin(), ToLower);
        return folded;
    }
    const auto wide = Iconv::For(CP_UTF8, Iconv::Direction::ToUtf32).Convert(utf8);
    if (!wide) return folded;
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    std::string units = *wide;
    for (std::size_t i = 0; i + 4 <= units.size(); i += 4) {
        char32_t unit = 0;
        units.copy(reinterpret_cast<char*>(&unit), 4, i);
        if (locale) unit = static_cast<char32_t>(towlower_l(static_cast<wint_t>(unit), locale));
        units.replace(i, 4, reinterpret_cast<const char*>(&unit), 4);
    }
    return Iconv::For(CP_UTF8, Iconv::Direction::FromUtf32).Convert(units).value_or(folded);
}

} // namespace kx::text

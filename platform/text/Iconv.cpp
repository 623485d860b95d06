#include "platform/text/Iconv.h"

#include "include/platform/CodePage.h"

#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

namespace kx::text {

namespace {

// The C library has a lock of its own in these, which a fork's child may find taken for ever.
constinit sync::Mutex g_lock;
[[maybe_unused]] const bool g_atFork = sync::LockAtFork < []() -> auto&
{
    return g_lock;
}
> (sync::ForkOrder::Text);

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

bool IsTo(Iconv::Direction direction)
{
    return direction == Iconv::Direction::ToUtf8 || direction == Iconv::Direction::ToUtf16 ||
           direction == Iconv::Direction::ToUtf32;
}

} // namespace

Iconv& Iconv::For(UINT nCodePage, Direction direction)
{
    thread_local std::array<std::unique_ptr<Iconv>, 12> converters;
    auto& converter = converters[static_cast<std::size_t>(direction) + (nCodePage == CP_UTF8 ? 6u : 0u)];
    if (!converter) {
        const char* page = nCodePage == CP_UTF8 ? "UTF-8" : "GB18030";
        const char* form = UnicodeForm(direction);
        converter =
            IsTo(direction) ? std::make_unique<Iconv>(form, page) : std::make_unique<Iconv>(page, form);
    }
    return *converter;
}

Iconv::Iconv(const char* pszTo, const char* pszFrom)
{
    const sync::MutexLock lock(g_lock);
    m_cd = iconv_open(pszTo, pszFrom);
}

Iconv::~Iconv()
{
    const sync::MutexLock lock(g_lock);
    if (m_cd != reinterpret_cast<iconv_t>(-1)) iconv_close(m_cd);
}

// Converts as far as it goes; true when all of it went.
bool Iconv::Run(std::string_view& bytes, std::string& out)
{
    if (m_cd == reinterpret_cast<iconv_t>(-1)) return bytes.empty();
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

std::optional<std::string> Iconv::Convert(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size() * 2);
    if (!Run(bytes, out)) return std::nullopt;
    return out;
}

std::string Iconv::ConvertLossy(std::string_view bytes, std::string_view replacement, std::size_t unit)
{
    std::string out;
    out.reserve(bytes.size() * 2);
    while (!Run(bytes, out)) {
        out += replacement;
        bytes.remove_prefix(std::min(unit, bytes.size()));
    }
    return out;
}

} // namespace kx::text

#include "include/platform/Debug.h"
#include "include/platform/Error.h"
#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/debug/Observers.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unistd.h>
#include <utility>

using kx::debug::Kind;

namespace {

// What KX_DEBUG asked for as the library was loaded, before threads run that could change the environment.
class Setting
{
public:
    static const Setting& Get() noexcept
    {
        static const Setting setting(std::getenv("KX_DEBUG"));
        return setting;
    }

    bool All() const noexcept { return m_list == "1"; }
    bool Has(std::string_view family) const noexcept
    {
        for (std::string_view rest = m_list; !rest.empty();) {
            const std::size_t nEnd = std::min(rest.find(','), rest.size());
            if (rest.substr(0, nEnd) == family) return true;
            rest.remove_prefix(std::min(nEnd + 1, rest.size()));
        }
        return All();
    }

private:
    explicit Setting(const char* psz) noexcept
    {
        const std::string_view wanted = psz ? psz : "";
        m_list = {m_text.data(), wanted.copy(m_text.data(), m_text.size())};
    }

    std::array<char, 512> m_text; // a copy, as the environment's own text may change
    std::string_view m_list;
};

[[maybe_unused]] const bool g_bAsked = Setting::Get().All();

// One call for the whole text, past every stdio lock and buffer, so that lines of several threads stay whole
// and the last line before a crash is out.
void WriteStandardError(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t nWritten =
            kx::RetryEintr([&] { return write(STDERR_FILENO, text.data(), text.size()); });
        if (nWritten <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(nWritten));
    }
}

// A diagnostic as it is sent.
class Line
{
public:
    void Add(const char* pszFormat, va_list args) noexcept __attribute__((format(printf, 2, 0)))
    {
        const std::size_t nRoom = kMost - m_length; // with the end of the text, where the line's will stand
        const int n = std::vsnprintf(m_text.data() + m_length, nRoom, pszFormat, args);
        if (n > 0) m_length += std::min(static_cast<std::size_t>(n), nRoom - 1);
    }
    void Add(const char* pszFormat, ...) noexcept __attribute__((format(printf, 2, 3)))
    {
        va_list args;
        va_start(args, pszFormat);
        Add(pszFormat, args);
        va_end(args);
    }
    std::string_view Finish() noexcept
    {
        const auto end = m_text.begin() + static_cast<std::ptrdiff_t>(m_length);
        std::replace_if(
            m_text.begin(), end, [](char ch) { return static_cast<unsigned char>(ch) < ' ' || ch == 0x7F; },
            '?');
        *end = '\n';
        return {m_text.data(), m_length + 1};
    }

private:
    static constexpr std::size_t kMost = 1023;

    std::array<char, kMost> m_text;
    std::size_t m_length = 0;
};

thread_local int t_nQuiet = 0;
thread_local const char* t_pszStream = "a stream";

} // namespace

void OutputDebugStringA(const char* pszText)
{
    const int nSaved = errno;
    const std::string_view text = pszText ? pszText : "";
    if (Setting::Get().All()) WriteStandardError(text);
    kx::debug::TellObservers(text, Kind::Described);
    errno = nSaved;
}

kx::debug::Quiet::Quiet() noexcept
{
    ++t_nQuiet;
}

kx::debug::Quiet::~Quiet()
{
    --t_nQuiet;
}

kx::debug::StreamName::StreamName(const char* pszFile) noexcept
    : m_pszBefore(std::exchange(t_pszStream, pszFile))
{
}

kx::debug::StreamName::~StreamName()
{
    t_pszStream = m_pszBefore;
}

const char* kx::debug::StreamName::Get() noexcept
{
    return t_pszStream;
}

bool kx::debug::Wants(std::string_view family) noexcept
{
    return (AnyWantsDiagnostics() || Setting::Get().Has(family)) && t_nQuiet == 0;
}

void kx::debug::Tell(const char* pszFamily, const char* pszFormat, ...) noexcept
{
    if (!Wants(pszFamily)) return;
    const int nErrno = errno;
    const DWORD dwError = GetLastError();
    Line line;
    line.Add("%s: ", pszFamily);
    va_list args;
    va_start(args, pszFormat);
    line.Add(pszFormat, args);
    va_end(args);
    const std::string_view text = line.Finish();
    if (Setting::Get().Has(pszFamily)) WriteStandardError(text);
    TellObservers(text, Kind::Diagnostic);
    SetLastError(dwError);
    errno = nErrno;
}

#include "include/platform/Debug.h"

#include "platform/Errno.h"
#include "platform/debug/Observers.h"

#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace {

bool WantsStandardError()
{
    static const bool bWants = [] {
        const char* psz = std::getenv("KX_DEBUG");
        return psz && std::string_view(psz) == "1";
    }();
    return bWants;
}

// Asked at load, before threads run that could change the environment.
[[maybe_unused]] const bool g_bAsked = WantsStandardError();

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

} // namespace

void OutputDebugStringA(const char* pszText)
{
    const int nSaved = errno;
    const std::string_view text = pszText ? pszText : "";
    if (WantsStandardError()) WriteStandardError(text);
    kx::debug::TellObservers(text);
    errno = nSaved;
}

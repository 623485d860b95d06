#include "platform/gdiplus/Calls.h"

#include "include/platform/CodePage.h"
#include "include/platform/Error.h"
#include "include/platform/GdiPlusFlat.h"
#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/sync/Mutex.h"

#include <atomic>
#include <string_view>
#include <unordered_set>

namespace {

// The starts that have not been ended.
class Starts
{
public:
    std::uintptr_t Begin()
    {
        const kx::sync::MutexLock lock(m_lock);
        m_tokens.insert(++m_nLast);
        m_nCount.store(m_tokens.size(), std::memory_order_relaxed);
        return m_nLast;
    }
    void End(std::uintptr_t nToken)
    {
        const kx::sync::MutexLock lock(m_lock);
        m_tokens.erase(nToken);
        m_nCount.store(m_tokens.size(), std::memory_order_relaxed);
    }
    bool Any() const noexcept { return m_nCount.load(std::memory_order_relaxed) > 0; }

private:
    kx::sync::Mutex m_lock;
    std::unordered_set<std::uintptr_t> m_tokens KX_GUARDED_BY(m_lock);
    std::uintptr_t m_nLast KX_GUARDED_BY(m_lock) = 0;
    std::atomic<std::size_t> m_nCount{0};
};

kx::Immortal<Starts> g_starts;
std::atomic<bool> g_bTold{false}; // that there was no start

} // namespace

bool kx::gdiplus::Started() noexcept
{
    return g_starts->Any();
}

Gdiplus::Status kx::gdiplus::NotStarted() noexcept
{
    if (kx::debug::Wants("picture") && !g_bTold.exchange(true))
        kx::debug::Tell("picture",
                        "GdiplusStartup was not called, or ended; no picture and no gradient is drawn");
    return Gdiplus::GdiplusNotInitialized;
}

Gdiplus::GpStatus Gdiplus::GdiplusStartup(std::uintptr_t* pToken, const GdiplusStartupInput* pInput,
                                          GdiplusStartupOutput*)
try {
    if (!pToken || !pInput) return InvalidParameter;
    if (pInput->GdiplusVersion != 1) return UnsupportedGdiplusVersion;
    *pToken = g_starts->Begin();
    g_bTold = false;
    return Ok;
} catch (...) {
    kx::NoMemory();
    return OutOfMemory;
}

void Gdiplus::GdiplusShutdown(std::uintptr_t nToken)
{
    g_starts->End(nToken);
}

namespace kx::gdiplus {

std::string ToCodePage(const WCHAR* pszPath)
{
    // Anything longer than the paths of this library can be is none.
    constexpr std::size_t kMaxUnits = 32767;
    const std::u16string_view path = pszPath ? std::u16string_view(pszPath) : std::u16string_view();
    if (path.size() > kMaxUnits) return {};
    const int nUnits = static_cast<int>(path.size());
    const int nBytes = WideCharToMultiByte(CP_ACP, 0, path.data(), nUnits, nullptr, 0);
    std::string text(static_cast<std::size_t>(nBytes), '\0');
    WideCharToMultiByte(CP_ACP, 0, path.data(), nUnits, text.data(), nBytes);
    return text;
}

Gdiplus::Status StatusOf(DWORD dwError) noexcept
{
    switch (dwError) {
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return Gdiplus::AccessDenied;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_DIRECTORY:
    case ERROR_NOT_READY:
        return Gdiplus::FileNotFound;
    default:
        return Gdiplus::GenericError;
    }
}

} // namespace kx::gdiplus

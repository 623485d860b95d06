#include "platform/gdiplus/Startup.h"

#include "include/platform/GdiPlusFlat.h"
#include "platform/Immortal.h"

#include <atomic>
#include <mutex>
#include <unordered_set>

namespace {

// The starts that have not been ended.
class Starts
{
public:
    std::uintptr_t Begin()
    {
        const std::lock_guard lock(m_mutex);
        m_tokens.insert(++m_nLast);
        m_nCount.store(m_tokens.size(), std::memory_order_relaxed);
        return m_nLast;
    }
    void End(std::uintptr_t nToken)
    {
        const std::lock_guard lock(m_mutex);
        m_tokens.erase(nToken);
        m_nCount.store(m_tokens.size(), std::memory_order_relaxed);
    }
    bool Any() const noexcept { return m_nCount.load(std::memory_order_relaxed) > 0; }

private:
    std::mutex m_mutex;
    std::unordered_set<std::uintptr_t> m_tokens;
    std::uintptr_t m_nLast = 0;
    std::atomic<std::size_t> m_nCount{0};
};

kx::Immortal<Starts> g_starts;

} // namespace

bool kx::gdiplus::Started() noexcept
{
    return g_starts->Any();
}

Gdiplus::GpStatus Gdiplus::GdiplusStartup(std::uintptr_t* pToken, const GdiplusStartupInput* pInput,
                                          GdiplusStartupOutput*)
try {
    if (!pToken || !pInput) return InvalidParameter;
    if (pInput->GdiplusVersion != 1) return UnsupportedGdiplusVersion;
    *pToken = g_starts->Begin();
    return Ok;
} catch (const std::bad_alloc&) {
    return OutOfMemory;
}

void Gdiplus::GdiplusShutdown(std::uintptr_t nToken)
{
    g_starts->End(nToken);
}

#include "include/platform/CodePage.h"

#include "include/platform/Error.h"
#include "include/platform/Host.h"
#include "platform/Errno.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <atomic>
#include <cstring>

namespace {

std::atomic<UINT> g_codePage{CP_GBK};

// 936 or 65001, 0 for a code page that isn't served.
UINT Served(UINT nCodePage)
{
    if (nCodePage == CP_ACP) return GetACP();
    return nCodePage == CP_GBK || nCodePage == CP_UTF8 ? nCodePage : 0;
}

int Deliver(const std::string& converted, std::size_t unit, void* pTarget, int nTarget)
{
    const std::size_t units = converted.size() / unit;
    if (units > static_cast<std::size_t>(INT32_MAX)) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (nTarget == 0) return static_cast<int>(units);
    if (nTarget < 0 || !pTarget) return kx::Fail(ERROR_INVALID_PARAMETER);
    if (units > static_cast<std::size_t>(nTarget)) return kx::Fail(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(pTarget, converted.data(), converted.size());
    return static_cast<int>(units);
}

} // namespace

UINT GetACP() noexcept
{
    return g_codePage.load(std::memory_order_relaxed);
}

bool KXHost::SetCodePage(UINT nCodePage)
{
    if (nCodePage != CP_GBK && nCodePage != CP_UTF8) return false;
    g_codePage.store(nCodePage, std::memory_order_relaxed);
    return true;
}

bool kx::text::IsDoubleByte() noexcept
{
    return GetACP() == CP_GBK;
}

int IsDBCSLeadByte(BYTE ch) noexcept
{
    return kx::text::IsDoubleByte() && kx::text::IsLead(static_cast<char>(ch));
}

int lstrcmpiA(const char* psz1, const char* psz2) noexcept
{
    const std::string_view a = psz1 ? psz1 : "";
    const std::string_view b = psz2 ? psz2 : "";
    try {
        const auto first = kx::text::ToUtf8(a);
        const auto second = kx::text::ToUtf8(b);
        if (first && second) return kx::text::FoldCase(*first).compare(kx::text::FoldCase(*second));
    } catch (...) {
        kx::NoMemory();
    }
    return a.compare(b);
}

int MultiByteToWideChar(UINT nCodePage, DWORD, const char* pszSource, int nSource, WCHAR* pTarget,
                        int nTarget)
try {
    const UINT page = Served(nCodePage);
    if (page == 0 || !pszSource || nSource == 0) return kx::Fail(ERROR_INVALID_PARAMETER);
    const std::size_t length = nSource < 0 ? std::strlen(pszSource) + 1 : static_cast<std::size_t>(nSource);
    auto& converter = kx::text::Iconv::For(page, kx::text::Iconv::Direction::ToUtf16);
    return Deliver(converter.ConvertLossy({pszSource, length}, "\xFD\xFF"), sizeof(WCHAR), pTarget, nTarget);
} catch (...) {
    return kx::NoMemory();
}

int WideCharToMultiByte(UINT nCodePage, DWORD, const WCHAR* pSource, int nSource, char* pszTarget,
                        int nTarget, const char*, int*)
try {
    const UINT page = Served(nCodePage);
    if (page == 0 || !pSource || nSource == 0) return kx::Fail(ERROR_INVALID_PARAMETER);
    const std::size_t units =
        nSource < 0 ? std::u16string_view(pSource).size() + 1 : static_cast<std::size_t>(nSource);
    auto& converter = kx::text::Iconv::For(page, kx::text::Iconv::Direction::FromUtf16);
    const std::string_view bytes(reinterpret_cast<const char*>(pSource), units * sizeof(WCHAR));
    return Deliver(converter.ConvertLossy(bytes, "?", sizeof(WCHAR)), 1, pszTarget, nTarget);
} catch (...) {
    return kx::NoMemory();
}

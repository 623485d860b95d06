#include "KXIniDataMgr.h"

#include "KXNum.h"
#include "files/NumberText.h"
#include "platform/Error.h"
#include "platform/Exception.h"
#include "platform/Profile.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <optional>
#include <string_view>
#include <vector>

using kx::files::ScanNumber;
using kx::files::ToDouble;
using kx::files::ToFixedPoint;

namespace {

constexpr std::size_t kMaxText = 256; // with its end

// A value's text as the profile service gives it; nothing where the default counts.
class Text
{
public:
    Text(const char* pszFile, const char* pszSection, const char* pszKey)
        : m_length(GetPrivateProfileStringA(pszSection, pszKey, nullptr, m_buffer.data(), kMaxText, pszFile))
    {
    }

    explicit operator bool() const noexcept { return m_length > 0; }
    const char* Get() const noexcept { return m_buffer.data(); }
    std::string_view View() const noexcept { return {m_buffer.data(), m_length}; }

private:
    std::array<char, kMaxText> m_buffer;
    std::size_t m_length;
};

int ToInteger(const Text& text)
{
    int n = 0;
    ScanNumber(text.View(), n);
    return n;
}

bool ToBool(const Text& text)
{
    constexpr std::string_view kTrue = "true";
    const std::string_view found = text.View();
    return std::equal(found.begin(), found.end(), kTrue.begin(), kTrue.end(),
                      [](char ch, char lower) { return (ch | 0x20) == lower; });
}

// The numbers in the text as the bytes of one, the first the highest; nothing for another count of numbers.
template <std::size_t nCount>
std::optional<unsigned long> ToBytes(const Text& text)
{
    std::vector<int> numbers;
    numbers.reserve(nCount);
    CKXNum::ApartNums(text.Get(), numbers);
    if (numbers.size() != nCount) return std::nullopt;
    unsigned long bytes = 0;
    for (const int n : numbers) {
        if (n < 0 || n > 255) return std::nullopt;
        bytes = bytes << 8 | static_cast<unsigned long>(n);
    }
    return bytes;
}

int ByteOf(unsigned long value, int nShift)
{
    return static_cast<int>(value >> nShift & 0xFF);
}

std::optional<CTime> ToTime(const Text& text)
{
    std::array<int, 6> t{};
    if (std::sscanf(text.Get(), "%4d-%2d-%2d %2d:%2d:%2d", &t[0], &t[1], &t[2], &t[3], &t[4], &t[5]) != 6)
        return std::nullopt;
    try {
        return CTime(t[0], t[1], t[2], t[3], t[4], t[5]);
    } catch (CInvalidArgException* pException) {
        pException->Delete();
        return std::nullopt;
    }
}

int Write(const char* pszFile, const char* pszSection, const char* pszKey, const CString& strText)
{
    return WritePrivateProfileStringA(pszSection, pszKey, strText, pszFile);
}

} // namespace

int CKXIniDataMgr::GetInteger(const char* pszFile, const char* pszSection, const char* pszKey, int nDefault)
{
    const Text text(pszFile, pszSection, pszKey);
    return text ? ToInteger(text) : nDefault;
}

int CKXIniDataMgr::GetInteger(const char* pszFile, const char* pszSection, const char* pszKey, int nDefault,
                              int nMin, int nMax)
{
    const Text text(pszFile, pszSection, pszKey);
    if (!text) return nDefault;
    const int n = ToInteger(text);
    return n >= nMin && n <= nMax ? n : nDefault;
}

CString CKXIniDataMgr::GetString(const char* pszFile, const char* pszSection, const char* pszKey,
                                 const char* pszDefault)
{
    const Text text(pszFile, pszSection, pszKey);
    return text ? CString(text.View()) : CString(pszDefault);
}

float CKXIniDataMgr::GetFloat(const char* pszFile, const char* pszSection, const char* pszKey, float fDefault)
{
    const Text text(pszFile, pszSection, pszKey);
    return text ? static_cast<float>(ToDouble(text.View())) : fDefault;
}

double CKXIniDataMgr::GetDouble(const char* pszFile, const char* pszSection, const char* pszKey,
                                double dDefault)
{
    const Text text(pszFile, pszSection, pszKey);
    return text ? ToDouble(text.View()) : dDefault;
}

bool CKXIniDataMgr::GetBoolean(const char* pszFile, const char* pszSection, const char* pszKey, bool bDefault)
{
    const Text text(pszFile, pszSection, pszKey);
    return text ? ToBool(text) : bDefault;
}

int CKXIniDataMgr::GetBOOL(const char* pszFile, const char* pszSection, const char* pszKey, int bDefault)
{
    const Text text(pszFile, pszSection, pszKey);
    return text ? ToBool(text) : bDefault;
}

unsigned long CKXIniDataMgr::GetRGB(const char* pszFile, const char* pszSection, const char* pszKey,
                                    unsigned long clrDefault)
try {
    const Text text(pszFile, pszSection, pszKey);
    const auto bytes = text ? ToBytes<3>(text) : std::nullopt;
    return bytes ? *bytes >> 16 | (*bytes & 0xFF00) | (*bytes & 0xFF) << 16 : clrDefault;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

unsigned long CKXIniDataMgr::GetIPAddress(const char* pszFile, const char* pszSection, const char* pszKey,
                                          unsigned long dwDefault)
try {
    const Text text(pszFile, pszSection, pszKey);
    return text ? ToBytes<4>(text).value_or(dwDefault) : dwDefault;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

CTime CKXIniDataMgr::GetDateTime(const char* pszFile, const char* pszSection, const char* pszKey,
                                 CTime timeDefault)
{
    const Text text(pszFile, pszSection, pszKey);
    return text ? ToTime(text).value_or(timeDefault) : timeDefault;
}

int CKXIniDataMgr::WriteInteger(const char* pszFile, const char* pszSection, const char* pszKey, int nValue)
{
    CString text;
    text.Format("%d", nValue);
    return Write(pszFile, pszSection, pszKey, text);
}

int CKXIniDataMgr::WriteString(const char* pszFile, const char* pszSection, const char* pszKey,
                               const char* pszValue)
{
    return WritePrivateProfileStringA(pszSection, pszKey, pszValue, pszFile);
}

int CKXIniDataMgr::WriteFloat(const char* pszFile, const char* pszSection, const char* pszKey, float fValue)
{
    return WriteDouble(pszFile, pszSection, pszKey, fValue);
}

int CKXIniDataMgr::WriteDouble(const char* pszFile, const char* pszSection, const char* pszKey, double dValue)
{
    const CString text = ToFixedPoint(dValue);
    if (text.GetLength() >= static_cast<int>(kMaxText)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return Write(pszFile, pszSection, pszKey, text);
}

int CKXIniDataMgr::WriteBoolean(const char* pszFile, const char* pszSection, const char* pszKey, bool bValue)
{
    return WritePrivateProfileStringA(pszSection, pszKey, bValue ? "TRUE" : "FALSE", pszFile);
}

int CKXIniDataMgr::WriteBOOL(const char* pszFile, const char* pszSection, const char* pszKey, int bValue)
{
    return WriteBoolean(pszFile, pszSection, pszKey, bValue != 0);
}

int CKXIniDataMgr::WriteRGB(const char* pszFile, const char* pszSection, const char* pszKey,
                            unsigned long clrValue)
{
    CString text;
    text.Format("RGB(%d,%d,%d)", ByteOf(clrValue, 0), ByteOf(clrValue, 8), ByteOf(clrValue, 16));
    return Write(pszFile, pszSection, pszKey, text);
}

int CKXIniDataMgr::WriteIPAddress(const char* pszFile, const char* pszSection, const char* pszKey,
                                  unsigned long dwValue)
{
    CString text;
    text.Format("IP(%d.%d.%d.%d)", ByteOf(dwValue, 24), ByteOf(dwValue, 16), ByteOf(dwValue, 8),
                ByteOf(dwValue, 0));
    return Write(pszFile, pszSection, pszKey, text);
}

int CKXIniDataMgr::WriteDateTime(const char* pszFile, const char* pszSection, const char* pszKey,
                                 CTime timeValue)
{
    return Write(pszFile, pszSection, pszKey, timeValue.Format("%Y-%m-%d %H:%M:%S"));
}

#include "KXIniDataMgr.h"

#include "KXNum.h"
#include "platform/Error.h"
#include "platform/Exception.h"
#include "platform/Profile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <vector>

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
    return static_cast<int>(std::clamp(std::strtol(text.Get(), nullptr, 10), long{INT_MIN}, long{INT_MAX}));
}

// As atof, but with a point in every locale. A text this short leaves the range of `double` by its exponent
// only, whose sign then tells which way.
double ToDouble(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool bNegative = text.starts_with('-');
    if (bNegative || text.starts_with('+')) text.remove_prefix(1);
    if (text.starts_with('-')) return 0;

    const bool bHex = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = text.substr(bHex ? 2 : 0);
    double value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value,
                                        bHex ? std::chars_format::hex : std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range) {
        const std::string_view number(digits.data(), result.ptr);
        value = number.find('-') != number.npos ? 0 : HUGE_VAL;
    } else if (result.ec != std::errc()) {
        value = 0;
    }
    return bNegative ? -value : value;
}

bool ToBool(const Text& text)
{
    return CString(text.View()).CompareNoCase("true") == 0;
}

// The numbers in the text as bytes of one, the first the highest; nothing for another count of numbers.
std::optional<unsigned long> ToBytes(const Text& text, std::size_t count)
{
    std::vector<int> numbers;
    CKXNum::ApartNums(text.Get(), numbers);
    if (numbers.size() != count) return std::nullopt;
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

unsigned long ReverseThree(unsigned long bytes)
{
    return (bytes & 0xFF) << 16 | (bytes & 0xFF00) | (bytes >> 16 & 0xFF);
}

std::optional<CTime> ToTime(const Text& text)
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (std::sscanf(text.Get(), "%4d-%2d-%2d %2d:%2d:%2d", &year, &month, &day, &hour, &minute, &second) != 6)
        return std::nullopt;
    try {
        return CTime(year, month, day, hour, minute, second);
    } catch (CInvalidArgException* pException) {
        pException->Delete();
        return std::nullopt;
    }
}

template <class... Args>
int WriteFormatted(const char* pszFile, const char* pszSection, const char* pszKey, const char* pszFormat,
                   Args... args)
{
    CString text;
    text.Format(pszFormat, args...);
    return WritePrivateProfileStringA(pszSection, pszKey, text, pszFile);
}

} // namespace

#include "files/NumberText.h"

#include "internal/Trim.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

namespace kx::files {

namespace {

// Steps over a sign; true for a minus.
bool TakeSign(std::string_view& text)
{
    const bool bNegative = text.starts_with('-');
    if (bNegative || text.starts_with('+')) text.remove_prefix(1);
    return bNegative;
}

// Whether a number out of the range of `double` underflows (true) or overflows (false): by the place of its
// first digit, moved by its exponent.
bool IsTiny(std::string_view number, bool bHex)
{
    const std::string_view mantissa = number.substr(0, number.find_first_of(bHex ? "pP" : "eE"));
    const std::string_view exponent = number.substr(std::min(mantissa.size() + 1, number.size()));
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_not_of("0.");
    if (first == mantissa.npos) return true;
    const double dPlace = static_cast<double>(point) - static_cast<double>(first);
    double dExponent = 0;
    for (const char ch : exponent)
        if (ch >= '0' && ch <= '9') dExponent = dExponent * 10 + (ch - '0');
    if (exponent.starts_with('-')) dExponent = -dExponent;
    return dPlace * (bHex ? 4 : 1) + dExponent < 0;
}

template <class Number>
void Scan(std::string_view text, Number& nValue)
{
    using Limits = std::numeric_limits<Number>;
    text = text::TrimLeft(text);
    const bool bNegative = TakeSign(text);
    unsigned long long nDigits = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), nDigits);
    if (result.ec == std::errc::invalid_argument) return;
    if (result.ec == std::errc::result_out_of_range) nDigits = std::numeric_limits<unsigned long long>::max();
    if constexpr (std::is_unsigned_v<Number>) {
        static_assert(sizeof(Number) == sizeof(nDigits));
        nValue = bNegative && result.ec == std::errc() ? 0 - nDigits : nDigits;
    } else {
        constexpr auto nMost = static_cast<unsigned long long>(Limits::max());
        if (bNegative)
            nValue = nDigits > nMost ? Limits::min() : static_cast<Number>(-static_cast<Number>(nDigits));
        else
            nValue = static_cast<Number>(std::min(nDigits, nMost));
    }
}

} // namespace

double ToDouble(std::string_view text)
{
    text = text::TrimLeft(text);
    const bool bNegative = TakeSign(text);
    const bool bHex = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = text.substr(bHex ? 2 : 0);
    const auto isHex = [](char ch) { return std::isxdigit(static_cast<unsigned char>(ch)) != 0; };
    const std::string_view first = digits.substr(digits.starts_with('.') ? 1 : 0, 1);
    if (digits.starts_with('-') || (bHex && !std::all_of(first.begin(), first.end(), isHex))) return 0;

    double value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value,
                                        bHex ? std::chars_format::hex : std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range)
        value = IsTiny({digits.data(), static_cast<std::size_t>(result.ptr - digits.data())}, bHex)
                    ? 0
                    : HUGE_VAL;
    return bNegative ? -value : value;
}

CString ToFixedPoint(double dValue)
{
    std::array<char, 400> text; // 309 digits, a sign, a point and six more
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), dValue, std::chars_format::fixed, 6);
    return CString(text.data(), static_cast<int>(result.ptr - text.data()));
}

void ScanNumber(std::string_view text, int& nValue)
{
    Scan(text, nValue);
}

void ScanNumber(std::string_view text, long& nValue)
{
    Scan(text, nValue);
}

void ScanNumber(std::string_view text, unsigned long& nValue)
{
    Scan(text, nValue);
}

void ScanNumber(std::string_view text, unsigned long long& nValue)
{
    Scan(text, nValue);
}

} // namespace kx::files

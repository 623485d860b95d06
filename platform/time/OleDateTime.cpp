#include "include/platform/OleDateTime.h"

#include "include/platform/Module.h"
#include "platform/text/CharWalk.h"
#include "platform/time/Clock.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <ctime>
#include <optional>
#include <string_view>

namespace {

struct DateFields
{
    int year, month, day, hour, minute, second;
};

// Takes what it knows off the front of a text; what isn't there is left alone.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : m_rest(text) {}

    bool AtEnd() const noexcept { return m_rest.empty(); }
    bool Take(char ch) noexcept
    {
        if (!m_rest.starts_with(ch)) return false;
        m_rest.remove_prefix(1);
        return true;
    }
    void TakeBlanks() noexcept
    {
        while (Take(' ') || Take('\t')) {
        }
    }
    // A number of so many digits, with no further one behind it.
    bool Take(int& n, std::size_t nFewest, std::size_t nMost) noexcept
    {
        const std::size_t nDigits = std::min(m_rest.find_first_not_of("0123456789"), m_rest.size());
        if (nDigits < nFewest || nDigits > nMost) return false;
        std::from_chars(m_rest.data(), m_rest.data() + nDigits, n);
        m_rest.remove_prefix(nDigits);
        return true;
    }
    // A word of ASCII letters in any case.
    bool TakeWord(std::string_view word) noexcept
    {
        if (kx::text::CompareNoCase(m_rest.substr(0, word.size()), word) != 0) return false;
        m_rest.remove_prefix(word.size());
        return true;
    }

private:
    std::string_view m_rest;
};

// Year, month, day, or with a slash also month, day, year.
bool TakeDate(Scanner& scanner, DateFields& f)
{
    Scanner start = scanner;
    for (const char chBetween : {'-', '/'}) {
        scanner = start;
        if (scanner.Take(f.year, 3, 4) && scanner.Take(chBetween) && scanner.Take(f.month, 1, 2) &&
            scanner.Take(chBetween) && scanner.Take(f.day, 1, 2))
            return true;
    }
    scanner = start;
    if (scanner.Take(f.month, 1, 2) && scanner.Take('/') && scanner.Take(f.day, 1, 2) && scanner.Take('/') &&
        scanner.Take(f.year, 4, 4))
        return true;
    scanner = start;
    return false;
}

// Hour and minute, maybe a second, and half of the day for a clock of twelve hours.
bool TakeTime(Scanner& scanner, DateFields& f)
{
    if (!scanner.Take(f.hour, 1, 2) || !scanner.Take(':') || !scanner.Take(f.minute, 1, 2)) return false;
    if (scanner.Take(':') && !scanner.Take(f.second, 1, 2)) return false;
    scanner.TakeBlanks();
    const bool bMorning = scanner.TakeWord("am");
    if (!bMorning && !scanner.TakeWord("pm")) return true;
    if (f.hour < 1 || f.hour > 12) return false;
    f.hour = f.hour % 12 + (bMorning ? 0 : 12);
    return true;
}

// The fields of a text as COleDateTime::ParseDateTime takes it, which may be no real date; nothing for a text
// of another form.
std::optional<DateFields> ParseDateText(std::string_view text)
{
    Scanner scanner(kx::text::Trim(text));
    DateFields fields{1899, 12, 30, 0, 0, 0};
    const bool bDate = TakeDate(scanner, fields);
    if (!bDate) fields = {1899, 12, 30, 0, 0, 0};
    const bool bBetween = bDate && (scanner.Take('T') || scanner.Take(' '));
    scanner.TakeBlanks();
    if (!bDate || bBetween) {
        if (!TakeTime(scanner, fields)) return std::nullopt;
        if (bDate) scanner.Take('Z');
    }
    return scanner.AtEnd() ? std::optional(fields) : std::nullopt;
}

// The arithmetic of COleDateTime: a moment as days since 1899-12-30, the time of day as the fraction of the
// absolute value, for the years 100 to 9999. Exact: every second has one count, and the count gives it back.

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr int Between(sys_days from, sys_days to)
{
    return static_cast<int>((to - from).count());
}

constexpr sys_days kDayZero = sys_days(year(1899) / 12 / 30);
constexpr int kFirstDay = Between(kDayZero, sys_days(year(100) / 1 / 1));
constexpr int kLastDay = Between(kDayZero, sys_days(year(9999) / 12 / 31));
constexpr int kSecondsPerDay = 86400;

static_assert(kFirstDay == -657434 && kLastDay == 2958465);

struct DayAndSecond
{
    int day;
    int second;
};

// To the nearest second. The last half second of a day belongs to the next one.
std::optional<DayAndSecond> Split(double dDays)
{
    if (!(dDays > kFirstDay - 1 && dDays < kLastDay + 1)) return std::nullopt;
    double dWhole;
    const double dFraction = std::fabs(std::modf(dDays, &dWhole));
    DayAndSecond split{static_cast<int>(dWhole), static_cast<int>(std::lround(dFraction * kSecondsPerDay))};
    if (split.second == kSecondsPerDay) split = {split.day + 1, 0};
    if (split.day > kLastDay) return std::nullopt;
    return split;
}

double Join(DayAndSecond split)
{
    const double dFraction = static_cast<double>(split.second) / kSecondsPerDay;
    return split.day < 0 ? split.day - dFraction : split.day + dFraction;
}

constexpr bool InRange(int n, int nFirst, int nLast)
{
    return n >= nFirst && n <= nLast;
}

// Nothing for fields that are no date or time of day.
std::optional<double> DaysFromFields(const DateFields& f)
{
    if (!InRange(f.year, 100, 9999) || !InRange(f.month, 1, 12) || !InRange(f.day, 1, 31) ||
        !InRange(f.hour, 0, 23) || !InRange(f.minute, 0, 59) || !InRange(f.second, 0, 59))
        return std::nullopt;
    const year_month_day date = year(f.year) / f.month / f.day;
    if (!date.ok()) return std::nullopt;
    return Join({Between(kDayZero, date), (f.hour * 60 + f.minute) * 60 + f.second});
}

// The nearest second's fields, tm_wday and tm_yday included; nothing for a count out of range or no number.
std::optional<std::tm> FieldsFromDays(double dDays)
{
    const auto split = Split(dDays);
    if (!split) return std::nullopt;
    return kx::time::FieldsOf(kDayZero + days(split->day), split->second);
}

constexpr UINT kInvalidTextId = 55296;

std::optional<std::tm> Fields(const COleDateTime& value)
{
    if (value.GetStatus() != COleDateTime::valid) return std::nullopt;
    return FieldsFromDays(value.GetDays());
}

int Field(const COleDateTime& value, int std::tm::*pField, int nBase)
{
    const auto fields = Fields(value);
    return fields ? (*fields).*pField + nBase : -1;
}

// The application's word for a date that is none.
CString InvalidText()
{
    std::array<char, 256> text;
    const auto size = static_cast<int>(text.size());
    for (const HINSTANCE module : {AfxGetResourceHandle(), HINSTANCE{nullptr}}) {
        const int nLength = LoadStringA(module, kInvalidTextId, text.data(), size);
        if (nLength > 0) return CString(text.data(), nLength);
    }
    return "Invalid DateTime";
}

} // namespace

COleDateTime::COleDateTime(double dDays) : m_dt(dDays), m_status(FieldsFromDays(dDays) ? valid : invalid)
{
}

COleDateTime::COleDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec)
{
    SetDateTime(nYear, nMonth, nDay, nHour, nMin, nSec);
}

COleDateTime COleDateTime::FromTime(std::int64_t nTime)
{
    COleDateTime result;
    result.m_status = invalid;
    std::tm fields{};
    // A year that would overflow below is far out of range.
    if (kx::time::ToLocal(nTime, fields) && fields.tm_year < 10000)
        result.SetDateTime(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                           fields.tm_min, std::min(fields.tm_sec, 59)); // a leap second has no count
    return result;
}

COleDateTime COleDateTime::GetCurrentTime()
{
    return FromTime(kx::time::WallSeconds());
}

int COleDateTime::SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec)
{
    const auto days = DaysFromFields({nYear, nMonth, nDay, nHour, nMin, nSec});
    m_dt = days.value_or(0);
    m_status = days ? valid : invalid;
    return m_status;
}

int COleDateTime::ParseDateTime(const char* pszText, DWORD, DWORD)
{
    const auto fields = ParseDateText(pszText ? std::string_view(pszText) : std::string_view());
    const auto days = fields ? DaysFromFields(*fields) : std::nullopt;
    m_dt = days.value_or(0);
    m_status = days ? valid : invalid;
    return days.has_value();
}

int COleDateTime::GetYear() const
{
    return Field(*this, &std::tm::tm_year, 1900);
}

int COleDateTime::GetMonth() const
{
    return Field(*this, &std::tm::tm_mon, 1);
}

int COleDateTime::GetDay() const
{
    return Field(*this, &std::tm::tm_mday, 0);
}

int COleDateTime::GetHour() const
{
    return Field(*this, &std::tm::tm_hour, 0);
}

int COleDateTime::GetMinute() const
{
    return Field(*this, &std::tm::tm_min, 0);
}

int COleDateTime::GetSecond() const
{
    return Field(*this, &std::tm::tm_sec, 0);
}

CString COleDateTime::Format(const char* pszFormat) const
{
    if (m_status == null) return {};
    const auto fields = Fields(*this);
    return fields ? kx::time::FormatFields(*fields, pszFormat) : InvalidText();
}

#include "platform/time/DayCount.h"

#include <chrono>
#include <cmath>

namespace kx::time {

namespace {

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

} // namespace

std::optional<double> DaysFromFields(const DateFields& f)
{
    if (!InRange(f.year, 100, 9999) || !InRange(f.month, 1, 12) || !InRange(f.day, 1, 31) ||
        !InRange(f.hour, 0, 23) || !InRange(f.minute, 0, 59) || !InRange(f.second, 0, 59))
        return std::nullopt;
    const year_month_day date = year(f.year) / f.month / f.day;
    if (!date.ok()) return std::nullopt;
    return Join({Between(kDayZero, date), (f.hour * 60 + f.minute) * 60 + f.second});
}

std::optional<std::tm> FieldsFromDays(double dDays)
{
    const auto split = Split(dDays);
    if (!split) return std::nullopt;
    const sys_days day = kDayZero + days(split->day);
    const year_month_day date(day);
    std::tm fields{};
    fields.tm_year = static_cast<int>(date.year()) - 1900;
    fields.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    fields.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    fields.tm_hour = split->second / 3600;
    fields.tm_min = split->second / 60 % 60;
    fields.tm_sec = split->second % 60;
    fields.tm_wday = static_cast<int>(std::chrono::weekday(day).c_encoding());
    fields.tm_yday = Between(sys_days(date.year() / 1 / 1), day);
    fields.tm_isdst = -1;
    return fields;
}

} // namespace kx::time

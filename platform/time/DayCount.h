#pragma once

#include <ctime>
#include <optional>
#include <string_view>

// The arithmetic of COleDateTime: a moment as days since 1899-12-30, the time of day as the fraction of the
// absolute value, for the years 100 to 9999. Exact: every second has one count, and the count gives it back.

namespace kx::time {

struct DateFields
{
    int year, month, day, hour, minute, second;
};

// The fields of a text as COleDateTime::ParseDateTime takes it, which may be no real date; nothing for a text
// of another form.
std::optional<DateFields> ParseDateText(std::string_view text);

// Nothing for fields that are no date or time of day.
std::optional<double> DaysFromFields(const DateFields& fields);

// The nearest second's fields, tm_wday and tm_yday included; nothing for a count out of range or no number.
std::optional<std::tm> FieldsFromDays(double dDays);

} // namespace kx::time

#pragma once

#include "../KXExport.h"
#include "String.h"
#include "Types.h"

#include <cstdint>

// The language in which dates are read: the user's.
inline constexpr DWORD LANG_USER_DEFAULT = 0x400;

// A date and time of day without a zone: a count of days since 1899-12-30 with the time as its fraction
// (of the absolute value, for days before that), and a status. Years 100 to 9999.
class KX_API COleDateTime
{
public:
    // Whether there is a time.
    enum DateTimeStatus
    {
        valid = 0,
        invalid = 1,
        null = 2,
    };

    // 1899-12-30 00:00:00, valid.
    COleDateTime() = default;
    // A count out of range, or no number, is kept and makes the status invalid.
    explicit COleDateTime(double dDays);
    // Does the same as SetDateTime.
    COleDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);
    // Local time of an instant; invalid when it can't be converted.
    static COleDateTime FromTime(std::int64_t nTime);
    // Local time of the clock's present instant.
    static COleDateTime GetCurrentTime();

    // Sets the value from six fields. Valid only if the day count made of them converts back to the very
    // same six; otherwise the count becomes 0 and the status invalid. Returns the status' number.
    int SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);

    // Sets the value from a text: a date ("2009-03-01", "2009/3/1", "3/1/2009"), a time of day of 1899-12-30
    // ("12:34", "12:34:56", "1:02:03 PM"), or both with a blank or "T" between them and maybe a "Z" behind,
    // which moves nothing. Non-zero on success; else the count becomes 0 and the status invalid. Flags and
    // language are ignored.
    int ParseDateTime(const char* pszText, DWORD dwFlags = 0, DWORD dwLanguage = LANG_USER_DEFAULT);

    // Status and days since 30 December 1899.
    DateTimeStatus GetStatus() const noexcept { return m_status; }
    void SetStatus(DateTimeStatus status) noexcept { m_status = status; }
    double GetDays() const noexcept { return m_dt; }
    operator double() const noexcept { return m_dt; }

    // The fields of the nearest second; -1 unless the status is valid and the count a date.
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;

    // A strftime form of the value, as of CTime::Format. Null gives the empty string; invalid, or a count
    // that is no date, gives entry 55296 of the application's string table (Module.h) or, without one,
    // "Invalid DateTime".
    CString Format(const char* pszFormat) const;

    friend bool operator==(const COleDateTime&, const COleDateTime&) = default;

    // Days since 30 December 1899, and whether they count.
    double m_dt = 0;
    DateTimeStatus m_status = valid;
};

#pragma once

#include "../KXExport.h"
#include "String.h"

#include <cstdint>
#include <ctime>

// An instant: signed 64-bit seconds since 1970-01-01 00:00:00 UTC.
class KX_API CTime
{
public:
    CTime() = default;
    // The second since 1970, UTC.
    explicit CTime(std::int64_t nTime) : m_time(nTime) {}

    // From local time. `nDST` is 1, 0 or -1 (let the system decide). Throws CInvalidArgException* when the
    // year is below 1900, the month, day (1 to 31), hour, minute or second is out of its range, or the
    // system can't represent the instant (nor can it the last second before 1970 UTC, whose number is its
    // word for that). A day that the month lacks carries over into the next month.
    CTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, int nDST = -1);

    // The clock's present second.
    static CTime GetCurrentTime();

    // The second since 1970, UTC.
    std::int64_t GetTime() const noexcept { return m_time; }

    // Local time broken down; null when the instant can't be converted. The record is the caller's.
    std::tm* GetLocalTm(std::tm* pTm) const;

    // Local time in a strftime form of any length. Names of days and months are English, whatever the locale.
    // Text that is no conversion stays as it is. The empty string when the instant can't be converted,
    // for null, and for a text blown up beyond reason by field widths.
    CString Format(const char* pszFormat) const;

    friend bool operator==(const CTime&, const CTime&) = default;
    friend auto operator<=>(const CTime&, const CTime&) = default;

private:
    std::int64_t m_time = 0;
};

#include "include/platform/Time.h"

#include "include/platform/Exception.h"
#include "platform/time/BrokenTime.h"
#include "platform/time/Clock.h"

namespace {

bool InRange(int n, int nFirst, int nLast)
{
    return n >= nFirst && n <= nLast;
}

} // namespace

CTime::CTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, int nDST)
{
    if (nYear < 1900 || !InRange(nMonth, 1, 12) || !InRange(nDay, 1, 31) || !InRange(nHour, 0, 23) ||
        !InRange(nMin, 0, 59) || !InRange(nSec, 0, 59))
        AfxThrowInvalidArgException();
    std::tm fields{};
    fields.tm_year = nYear - 1900;
    fields.tm_mon = nMonth - 1;
    fields.tm_mday = nDay;
    fields.tm_hour = nHour;
    fields.tm_min = nMin;
    fields.tm_sec = nSec;
    fields.tm_isdst = nDST;
    m_time = std::mktime(&fields);
    // The second before 1970 can't be told from a failure and counts as one.
    if (m_time == -1) AfxThrowInvalidArgException();
}

CTime CTime::GetCurrentTime()
{
    return CTime(kx::time::WallSeconds());
}

std::tm* CTime::GetLocalTm(std::tm* pTm) const
{
    return pTm && kx::time::ToLocal(m_time, *pTm) ? pTm : nullptr;
}

CString CTime::Format(const char* pszFormat) const
{
    std::tm fields{};
    if (!GetLocalTm(&fields)) return {};
    return kx::time::FormatFields(fields, pszFormat);
}

#include "include/platform/Time.h"
#include "include/platform/Exception.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"
#include "platform/time/Clock.h"

#include <array>
#include <cstring>
#include <locale.h>
#include <new>
#include <string>

namespace kx::time {

namespace {

// The C library has a lock of its own in localtime_r, which a fork's child may find taken for ever.
constinit sync::Mutex g_lock;
[[maybe_unused]] const bool g_atFork =
    sync::LockAtFork(sync::ForkOrder::Zone, []() -> sync::Mutex& { return g_lock; });

locale_t PlainLocale()
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
}

// strftime tells an empty text from one that doesn't fit only if the text can't be empty: hence the mark.
CString FormatLong(const std::tm& fields, const char* pszFormat)
try {
    const std::string marked = std::string("|") + pszFormat;
    const std::size_t limit = 4096 + 64 * marked.size();
    std::string text;
    for (std::size_t size = 1024; size <= 2 * limit; size *= 2) {
        text.resize(size);
        const std::size_t length = strftime_l(text.data(), size, marked.c_str(), &fields, PlainLocale());
        if (length > 0) return CString(std::string_view(text).substr(1, length - 1));
    }
    return {};
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

} // namespace

bool ToLocal(std::int64_t nTime, std::tm& fields) noexcept
{
    const std::time_t time = nTime;
    const sync::MutexLock lock(g_lock);
    return localtime_r(&time, &fields) != nullptr;
}

std::tm FieldsOf(std::chrono::sys_days day, int nSecond) noexcept
{
    const std::chrono::year_month_day date(day);
    std::tm fields{};
    fields.tm_year = static_cast<int>(date.year()) - 1900;
    fields.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    fields.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    fields.tm_hour = nSecond / 3600;
    fields.tm_min = nSecond / 60 % 60;
    fields.tm_sec = nSecond % 60;
    fields.tm_wday = static_cast<int>(std::chrono::weekday(day).c_encoding());
    fields.tm_yday = static_cast<int>((day - std::chrono::sys_days(date.year() / 1 / 1)).count());
    fields.tm_isdst = -1;
    return fields;
}

CString FormatFields(const std::tm& fields, const char* pszFormat)
{
    if (!pszFormat || !*pszFormat) return {};
    std::array<char, 128> text;
    const std::size_t length = strftime_l(text.data(), text.size(), pszFormat, &fields, PlainLocale());
    if (length > 0) return CString(std::string_view(text.data(), length));
    return FormatLong(fields, pszFormat);
}

} // namespace kx::time

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

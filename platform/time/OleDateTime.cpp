#include "include/platform/OleDateTime.h"

#include "include/platform/Module.h"
#include "platform/time/BrokenTime.h"
#include "platform/time/Clock.h"
#include "platform/time/DayCount.h"

#include <algorithm>
#include <array>

namespace {

constexpr UINT kInvalidTextId = 55296;

std::optional<std::tm> Fields(const COleDateTime& value)
{
    if (value.GetStatus() != COleDateTime::valid) return std::nullopt;
    return kx::time::FieldsFromDays(value.GetDays());
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

COleDateTime::COleDateTime(double dDays)
    : m_dt(dDays), m_status(kx::time::FieldsFromDays(dDays) ? valid : invalid)
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
    const auto days = kx::time::DaysFromFields({nYear, nMonth, nDay, nHour, nMin, nSec});
    m_dt = days.value_or(0);
    m_status = days ? valid : invalid;
    return m_status;
}

int COleDateTime::ParseDateTime(const char* pszText, DWORD, DWORD)
{
    const auto fields = kx::time::ParseDateText(pszText ? std::string_view(pszText) : std::string_view());
    const auto days = fields ? kx::time::DaysFromFields(*fields) : std::nullopt;
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

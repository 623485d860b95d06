#include "include/platform/OleDateTime.h"

#include "tests/support/Host.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

constexpr const char* kStamp = "%Y-%m-%d %H:%M:%S";

CString Stamp(double dDays)
{
    return COleDateTime(dDays).Format(kStamp);
}

void ExpectFields(const COleDateTime& value, const std::vector<int>& expected)
{
    const std::vector<int> fields{value.GetYear(), value.GetMonth(),  value.GetDay(),
                                  value.GetHour(), value.GetMinute(), value.GetSecond()};
    EXPECT_EQ(fields, expected) << value.GetDays();
}

TEST(OleDateTime, CountsDaysFromItsZero)
{
    const COleDateTime zero;
    EXPECT_EQ(zero.GetStatus(), COleDateTime::valid);
    ExpectFields(zero, {1899, 12, 30, 0, 0, 0});
    const struct
    {
        double dDays;
        const char* pszStamp;
    } cases[] = {
        {0.25, "1899-12-30 06:00:00"},
        {-0.25, "1899-12-30 06:00:00"}, // the time is the absolute value's fraction
        {-1.25, "1899-12-29 06:00:00"},
        {1, "1899-12-31 00:00:00"},
        {39886.3369097222, "2009-03-14 08:05:09"},
        {-657434, "100-01-01 00:00:00"},
        {-657434.75, "100-01-01 18:00:00"},
        {2958465.99999, "9999-12-31 23:59:59"},
        {60, "1900-02-28 00:00:00"}, // 1900 had no leap day
        {61, "1900-03-01 00:00:00"},
        {36585, "2000-02-29 00:00:00"},
        {1.0 - 0.4 / 86400, "1899-12-31 00:00:00"}, // to the nearest second
        {-2.0 + 0.4 / 86400, "1899-12-30 00:00:00"},
    };
    for (const auto& one : cases)
        EXPECT_STREQ(Stamp(one.dDays), one.pszStamp) << one.dDays;
    EXPECT_EQ(COleDateTime(2009, 3, 14, 0, 0, 0).GetDays(), 39886.0);
    EXPECT_EQ(COleDateTime(1899, 12, 28, 18, 0, 0).GetDays(), -2.75);
    EXPECT_STREQ(COleDateTime(39886.0).Format("%A %j"), "Saturday 073");
}

TEST(OleDateTime, EverySecondSurvives)
{
    for (const int year : {100, 1899, 1900, 2024, 9999})
        for (int i = 0; i < 86400; ++i) {
            const int h = i / 3600, m = i / 60 % 60, s = i % 60;
            const COleDateTime set(year, 12, 29, h, m, s);
            const COleDateTime read(set.GetDays());
            if (read.GetDay() != 29 || read.GetHour() != h || read.GetMinute() != m || read.GetSecond() != s)
                ADD_FAILURE() << year << " " << i;
        }
    for (int days = -657434; days <= 2958465; days += 89) {
        const COleDateTime date(days);
        EXPECT_EQ(COleDateTime(date.GetYear(), date.GetMonth(), date.GetDay(), 0, 0, 0).GetDays(), days);
    }
}

TEST(OleDateTime, RefusesWhatIsNoDate)
{
    const int bad[][6] = {{2009, 2, 30, 0, 0, 0}, {2009, 2, 29, 0, 0, 0}, {1900, 2, 29, 0, 0, 0},
                          {2009, 4, 31, 0, 0, 0}, {99, 1, 1, 0, 0, 0},    {10000, 1, 1, 0, 0, 0},
                          {0, 0, 0, 0, 0, 0},     {2009, 0, 1, 0, 0, 0},  {2009, 13, 1, 0, 0, 0},
                          {2009, 1, 0, 0, 0, 0},  {2009, 1, 1, 24, 0, 0}, {2009, 1, 1, 0, 60, 0},
                          {2009, 1, 1, 0, 0, 60}, {2009, 1, 1, -1, 0, 0}, {INT32_MIN, INT32_MAX, 1, 1, 1, 1}};
    COleDateTime value;
    for (const auto& f : bad) {
        EXPECT_EQ(value.SetDateTime(2008, 2, 29, 23, 59, 59), COleDateTime::valid);
        EXPECT_EQ(value.SetDateTime(f[0], f[1], f[2], f[3], f[4], f[5]), COleDateTime::invalid)
            << testing::PrintToString(f);
        EXPECT_EQ(value.GetStatus(), COleDateTime::invalid);
        EXPECT_EQ(value.GetDays(), 0);
    }
    ExpectFields(value, {-1, -1, -1, -1, -1, -1});
}

TEST(OleDateTime, SaysWhatHasNoFields)
{
    constexpr double kInf = std::numeric_limits<double>::infinity();
    for (const double never : {2958466.0, 2958465.999999, -657435.0, 1e300, kInf, -kInf, std::nan("")}) {
        COleDateTime value(never);
        EXPECT_EQ(value.GetStatus(), COleDateTime::invalid) << never;
        for (int i = 0; i < 2; ++i) { // a status that lies changes nothing
            EXPECT_STREQ(value.Format(kStamp), "Invalid DateTime") << never;
            ExpectFields(value, {-1, -1, -1, -1, -1, -1});
            value.SetStatus(COleDateTime::valid);
        }
    }
    COleDateTime value(1.5);
    value.SetStatus(COleDateTime::null);
    EXPECT_STREQ(value.Format(kStamp), "");
    EXPECT_EQ(value.GetYear(), -1);
    EXPECT_STREQ(COleDateTime(1.5).Format(nullptr), "");
}

TEST(OleDateTime, ReadsTheClock)
{
    const test::VirtualClock clock(1237017909);
    EXPECT_STREQ(COleDateTime::GetCurrentTime().Format(kStamp), "2009-03-14 08:05:09");
    for (const std::int64_t never :
         {INT64_MAX, INT64_MIN, std::int64_t{253402300800}, std::int64_t{-59011459201}})
        EXPECT_STREQ(COleDateTime::FromTime(never).Format(kStamp), "Invalid DateTime") << never;
    EXPECT_STREQ(COleDateTime::FromTime(253402300799).Format(kStamp), "9999-12-31 23:59:59");
    EXPECT_STREQ(COleDateTime::FromTime(-59011459200).Format(kStamp), "100-01-01 00:00:00");
}

} // namespace

#include "include/platform/Time.h"
#include "include/platform/Exception.h"
#include "include/platform/OleDateTime.h"
#include "tests/support/Test.h"

#include <cmath>
#include <limits>

namespace {

constexpr const char* kStamp = "%Y-%m-%d %H:%M:%S";

constexpr std::int64_t kRefused = INT64_MIN;

using Six = std::array<int, 6>;

std::int64_t Instant(const Six& f, int nDST = -1)
{
    try {
        return CTime(f[0], f[1], f[2], f[3], f[4], f[5], nDST).GetTime();
    } catch (CInvalidArgException* pException) {
        pException->Delete();
        return kRefused;
    }
}

TEST(Time, MakesInstantsOfFieldsInRange)
{
    const std::pair<Six, std::int64_t> cases[] = {
        {{1970, 1, 1, 0, 0, 0}, 0},
        {{2009, 3, 14, 8, 5, 9}, 1237017909},
        {{2038, 1, 19, 3, 14, 8}, 0x80000000}, // past 31 bits
        {{1900, 1, 1, 0, 0, 0}, -2208988800},
        {{2009, 4, 31, 12, 0, 0}, 1241179200}, // carries over to 1 May
        {{2009, 2, 31, 0, 0, 0}, 1236038400},  // 3 March
        {{2008, 2, 30, 0, 0, 0}, 1204329600},  // 1 March
    };
    for (const auto& [fields, expected] : cases)
        EXPECT_EQ(Instant(fields), expected) << testing::PrintToString(fields);
    const Six refused[] = {{1899, 12, 31, 0, 0, 0},   {INT32_MIN, 1, 1, 0, 0, 0}, {2009, 0, 1, 0, 0, 0},
                           {2009, 13, 1, 0, 0, 0},    {2009, 1, 0, 0, 0, 0},      {2009, 1, 32, 0, 0, 0},
                           {2009, 1, 1, -1, 0, 0},    {2009, 1, 1, 24, 0, 0},     {2009, 1, 1, 0, -1, 0},
                           {2009, 1, 1, 0, 60, 0},    {2009, 1, 1, 0, 0, -1},     {2009, 1, 1, 0, 0, 60},
                           {1969, 12, 31, 23, 59, 59}};
    for (const auto& never : refused)
        EXPECT_EQ(Instant(never), kRefused) << testing::PrintToString(never);
}

TEST(Time, FollowsTheZone)
{
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    EXPECT_STREQ(CTime(1237017909).Format(kStamp), "2009-03-14 09:05:09");
    EXPECT_STREQ(CTime(1247000000).Format(kStamp), "2009-07-07 22:53:20"); // summer
    EXPECT_EQ(Instant({2009, 7, 7, 22, 53, 20}), 1247000000);
    // The hour that comes twice: the caller may say which one is meant.
    EXPECT_EQ(Instant({2009, 10, 25, 2, 30, 0}, 1) + 3600, Instant({2009, 10, 25, 2, 30, 0}, 0));
    // The hour that never comes is still some instant beside it.
    EXPECT_LE(std::abs(Instant({2009, 3, 29, 2, 30, 0}) - 1238290200), 3600);
    setenv("TZ", "UTC0", 1);
    tzset();
}

TEST(Time, BreaksDownToLocalFields)
{
    std::tm fields{};
    EXPECT_EQ(CTime(1237017909).GetLocalTm(&fields), &fields);
    EXPECT_EQ(std::pair(fields.tm_year, fields.tm_yday), std::pair(109, 72));
    EXPECT_EQ(CTime(0).GetLocalTm(nullptr), nullptr);
    for (const std::int64_t never : {INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(CTime(never).GetLocalTm(&fields), nullptr);
        EXPECT_STREQ(CTime(never).Format(kStamp), "");
    }
}

TEST(Time, FormatsAnything)
{
    const std::string longText(100'000, 'x');
    const std::string longFormat = longText + "%d" + longText;
    const std::pair<const char*, std::string> cases[] = {
        {"%A, %B %d %I %p %%", "Saturday, March 14 08 AM %"},
        {nullptr, ""},
        {"", ""},
        {"50%", "50%"},
        {"%Q %! %d", "%Q %! 14"},
        {"\xC4\xEA%Y\xD4\xC2%m", "\xC4\xEA\x32\x30\x30\x39\xD4\xC2\x30\x33"}, // 2009, 03
        {"%300Y", std::string(296, '0') + "2009"},
        {"%20000000Y", ""},
        {longFormat.c_str(), longText + "14" + longText},
    };
    for (const auto& [format, expected] : cases)
        EXPECT_EQ(CTime(1237017909).Format(format).View(), expected);
}

constexpr Six kNoFields{-1, -1, -1, -1, -1, -1};

Six Fields(const COleDateTime& t)
{
    return {t.GetYear(), t.GetMonth(), t.GetDay(), t.GetHour(), t.GetMinute(), t.GetSecond()};
}

TEST(OleDateTime, CountsDaysFromItsZero)
{
    const std::pair<double, const char*> cases[] = {
        {0, "1899-12-30 00:00:00"},
        {0.25, "1899-12-30 06:00:00"},
        {-0.25, "1899-12-30 06:00:00"}, // the time is the absolute value's fraction
        {-1.25, "1899-12-29 06:00:00"},
        {39886.3369097222, "2009-03-14 08:05:09"},
        {-657434.75, "100-01-01 18:00:00"},
        {2958465.99999, "9999-12-31 23:59:59"},
        {60, "1900-02-28 00:00:00"}, // 1900 had no leap day
        {61, "1900-03-01 00:00:00"},
        {36585, "2000-02-29 00:00:00"},
        {1.0 - 0.4 / 86400, "1899-12-31 00:00:00"}, // to the nearest second
        {-2.0 + 0.4 / 86400, "1899-12-30 00:00:00"},
    };
    for (const auto& [days, stamp] : cases)
        EXPECT_STREQ(COleDateTime(days).Format(kStamp), stamp) << days;
    EXPECT_EQ(COleDateTime(), COleDateTime(0.0));
    EXPECT_EQ(COleDateTime(1899, 12, 28, 18, 0, 0).GetDays(), -2.75);
    EXPECT_STREQ(COleDateTime(39886.0).Format("%A %j"), "Saturday 073");
}

TEST(OleDateTime, EverySecondSurvives)
{
    for (const int year : {100, 1899, 1900, 2024, 9999})
        for (int i = 0; i < 86400; ++i) {
            const Six six{year, 12, 29, i / 3600, i / 60 % 60, i % 60};
            const COleDateTime set(six[0], six[1], six[2], six[3], six[4], six[5]);
            ASSERT_EQ(Fields(COleDateTime(set.GetDays())), six);
        }
    for (int days = -657434; days <= 2958465; days += 89) {
        const COleDateTime date(days);
        EXPECT_EQ(COleDateTime(date.GetYear(), date.GetMonth(), date.GetDay(), 0, 0, 0).GetDays(), days);
    }
}

TEST(OleDateTime, RefusesWhatIsNoDate)
{
    const Six bad[] = {{2009, 2, 30, 0, 0, 0}, {1900, 2, 29, 0, 0, 0}, {2009, 4, 31, 0, 0, 0},
                       {99, 1, 1, 0, 0, 0},    {10000, 1, 1, 0, 0, 0}, {0, 0, 0, 0, 0, 0},
                       {2009, 13, 1, 0, 0, 0}, {2009, 1, 1, 24, 0, 0}, {2009, 1, 1, 0, 60, 0},
                       {2009, 1, 1, 0, 0, 60}, {2009, 1, 1, -1, 0, 0}, {INT32_MIN, INT32_MAX, 1, 1, 1, 1}};
    COleDateTime value;
    for (const auto& f : bad) {
        EXPECT_EQ(value.SetDateTime(2008, 2, 29, 23, 59, 59), COleDateTime::valid);
        EXPECT_EQ(value.SetDateTime(f[0], f[1], f[2], f[3], f[4], f[5]), COleDateTime::invalid);
        EXPECT_EQ(value.GetStatus(), COleDateTime::invalid) << testing::PrintToString(f);
        EXPECT_EQ(value.GetDays(), 0);
    }
}

TEST(OleDateTime, SaysWhatHasNoFields)
{
    constexpr double kInf = std::numeric_limits<double>::infinity();
    for (const double never : {2958466.0, 2958465.999999, -657435.0, 1e300, kInf, -kInf, std::nan("")}) {
        COleDateTime value(never);
        EXPECT_EQ(value.GetStatus(), COleDateTime::invalid) << never;
        for (int i = 0; i < 2; ++i) { // a status that lies changes nothing
            EXPECT_STREQ(value.Format(kStamp), "Invalid DateTime") << never;
            EXPECT_EQ(Fields(value), kNoFields);
            value.SetStatus(COleDateTime::valid);
        }
    }
    COleDateTime value(1.5);
    EXPECT_STREQ(value.Format(nullptr), "");
    value.SetStatus(COleDateTime::null);
    EXPECT_STREQ(value.Format(kStamp), "");
    EXPECT_EQ(Fields(value), kNoFields);
}

TEST(OleDateTime, ParsesTexts)
{
    const COleDateTime moment(2009, 3, 1, 12, 34, 56);
    COleDateTime bad(0.0);
    bad.SetStatus(COleDateTime::invalid);
    const std::pair<const char*, COleDateTime> cases[] = {
        {"2009-03-01 12:34:56", moment},
        {"2009-03-01T12:34:56", moment},
        {" 2009/3/1  12:34:56 ", moment},
        {"3/1/2009 12:34:56 PM", moment},
        {"2009-03-01T12:34:56Z", moment},
        {"2009-03-01 12:34", COleDateTime(2009, 3, 1, 12, 34, 0)},
        {"2009-03-01", COleDateTime(2009, 3, 1, 0, 0, 0)},
        {"100-01-01 18:00:00", COleDateTime(100, 1, 1, 18, 0, 0)},
        {"9999-12-31 23:59:59", COleDateTime(9999, 12, 31, 23, 59, 59)},
        {"2008-02-29", COleDateTime(2008, 2, 29, 0, 0, 0)},
        {"06:00", COleDateTime(0.25)},
        {"12:00:00 am", COleDateTime(0.0)},
        {"1:30pm", COleDateTime(1899, 12, 30, 13, 30, 0)},
    };
    const auto expect = [](const char* text, const COleDateTime& value, bool bParsed) {
        COleDateTime parsed(1.5);
        EXPECT_EQ(parsed.ParseDateTime(text) != 0, bParsed) << text;
        EXPECT_EQ(parsed, value) << text;
    };
    for (const auto& [text, value] : cases)
        expect(text, value, true);
    for (const char* text : {"", "nonsense", "\xC4\xE3\xBA\xC3", "2009-03/01", "09-03-01", "20090301",
                             "2009-03-01T", "2009-03-01 12", "2009-03-01 12:34:56.5", "2009-03-01 12:34:56 x",
                             "12:34Z", static_cast<const char*>(nullptr)})
        expect(text, bad, false);
    for (const char* text :
         {"2009-02-29", "2009-04-31", "2009-13-01", "2009-03-0000000001", "99999999999999999999-01-01",
          "2009-03-01 24:00:00", "2009-03-01 12:34:60", "13:00 pm", "0:30 am"})
        expect(text, bad, false);
}

TEST(OleDateTime, ReadsTheClock)
{
    const test::VirtualClock clock(1237017909);
    EXPECT_EQ(COleDateTime::GetCurrentTime(), COleDateTime(2009, 3, 14, 8, 5, 9));
    EXPECT_EQ(COleDateTime::FromTime(253402300799), COleDateTime(9999, 12, 31, 23, 59, 59));
    EXPECT_EQ(COleDateTime::FromTime(-59011459200), COleDateTime(100, 1, 1, 0, 0, 0));
    for (const std::int64_t never :
         {INT64_MAX, INT64_MIN, std::int64_t{253402300800}, std::int64_t{-59011459201}})
        EXPECT_EQ(COleDateTime::FromTime(never).GetStatus(), COleDateTime::invalid) << never;
}

} // namespace

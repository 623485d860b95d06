#include "include/platform/Time.h"
#include "include/platform/Exception.h"
#include "tests/support/Test.h"

namespace {

constexpr const char* kStamp = "%Y-%m-%d %H:%M:%S";

constexpr std::int64_t kRefused = INT64_MIN;

std::int64_t Instant(std::array<int, 6> f, int nDST = -1)
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
    const std::pair<std::array<int, 6>, std::int64_t> cases[] = {
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
    const std::array<int, 6> refused[] = {
        {1899, 12, 31, 0, 0, 0},   {INT32_MIN, 1, 1, 0, 0, 0}, {2009, 0, 1, 0, 0, 0},  {2009, 13, 1, 0, 0, 0},
        {2009, 1, 0, 0, 0, 0},     {2009, 1, 32, 0, 0, 0},     {2009, 1, 1, -1, 0, 0}, {2009, 1, 1, 24, 0, 0},
        {2009, 1, 1, 0, -1, 0},    {2009, 1, 1, 0, 60, 0},     {2009, 1, 1, 0, 0, -1}, {2009, 1, 1, 0, 0, 60},
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
    EXPECT_EQ(fields.tm_year * 1000 + fields.tm_yday, 109072);
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

} // namespace

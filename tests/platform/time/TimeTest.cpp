#include "include/platform/Time.h"

#include "include/platform/Exception.h"
#include "tests/support/Host.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace {

constexpr const char* kStamp = "%Y-%m-%d %H:%M:%S";

// A zone for the length of a scope.
class Zone
{
public:
    explicit Zone(const char* pszZone) { Set(pszZone); }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;
    ~Zone() { Set("UTC0"); }

private:
    static void Set(const char* pszZone)
    {
        setenv("TZ", pszZone, 1);
        tzset();
    }
};

std::int64_t Instant(int y, int mo, int d, int h, int mi, int s, int dst = -1)
{
    return CTime(y, mo, d, h, mi, s, dst).GetTime();
}

bool Throws(int y, int mo, int d, int h, int mi, int s)
{
    try {
        Instant(y, mo, d, h, mi, s);
        return false;
    } catch (CInvalidArgException* pException) {
        pException->Delete();
        return true;
    }
}

TEST(Time, MakesInstantsOfFields)
{
    EXPECT_EQ(CTime().GetTime(), 0);
    EXPECT_EQ(Instant(1970, 1, 1, 0, 0, 0), 0);
    EXPECT_EQ(Instant(2009, 3, 14, 8, 5, 9), 1237017909);
    EXPECT_EQ(Instant(2038, 1, 19, 3, 14, 8), 0x80000000); // past 31 bits
    EXPECT_EQ(Instant(1900, 1, 1, 0, 0, 0), -2208988800);
    EXPECT_EQ(Instant(2009, 4, 31, 12, 0, 0), Instant(2009, 5, 1, 12, 0, 0));
    EXPECT_EQ(Instant(2009, 2, 31, 0, 0, 0), Instant(2009, 3, 3, 0, 0, 0));
    EXPECT_EQ(Instant(2008, 2, 30, 0, 0, 0), Instant(2008, 3, 1, 0, 0, 0));
    EXPECT_LT(CTime(5), CTime(6));
}

TEST(Time, RefusesFieldsOutOfRange)
{
    EXPECT_FALSE(Throws(1900, 1, 1, 0, 0, 0));
    EXPECT_FALSE(Throws(2009, 12, 31, 23, 59, 59));
    const int bad[][6] = {{1899, 12, 31, 0, 0, 0},   {-1, 1, 1, 0, 0, 0},    {2009, 0, 1, 0, 0, 0},
                          {2009, 13, 1, 0, 0, 0},    {2009, 1, 0, 0, 0, 0},  {2009, 1, 32, 0, 0, 0},
                          {2009, 1, 1, -1, 0, 0},    {2009, 1, 1, 24, 0, 0}, {2009, 1, 1, 0, -1, 0},
                          {2009, 1, 1, 0, 60, 0},    {2009, 1, 1, 0, 0, -1}, {2009, 1, 1, 0, 0, 60},
                          {1969, 12, 31, 23, 59, 59}};
    for (const auto& f : bad)
        EXPECT_TRUE(Throws(f[0], f[1], f[2], f[3], f[4], f[5])) << testing::PrintToString(f);
}

TEST(Time, FollowsTheZone)
{
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_STREQ(CTime(1237017909).Format(kStamp), "2009-03-14 09:05:09");
    EXPECT_STREQ(CTime(1247000000).Format(kStamp), "2009-07-07 22:53:20"); // summer
    EXPECT_EQ(Instant(2009, 7, 7, 22, 53, 20), 1247000000);
    // The hour that comes twice: the caller may say which one is meant.
    EXPECT_EQ(Instant(2009, 10, 25, 2, 30, 0, 1) + 3600, Instant(2009, 10, 25, 2, 30, 0, 0));
    // The hour that never comes is still some instant beside it.
    EXPECT_LE(std::abs(Instant(2009, 3, 29, 2, 30, 0) - 1238290200), 3600);
}

TEST(Time, BreaksDownToLocalFields)
{
    std::tm fields{};
    EXPECT_EQ(CTime(1237017909).GetLocalTm(&fields), &fields);
    EXPECT_EQ(fields.tm_year, 109);
    EXPECT_EQ(fields.tm_yday, 72);
    EXPECT_EQ(CTime(0).GetLocalTm(nullptr), nullptr);
    for (const std::int64_t never : {INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(CTime(never).GetLocalTm(&fields), nullptr);
        EXPECT_STREQ(CTime(never).Format(kStamp), "");
    }
}

TEST(Time, FormatsAnything)
{
    const CTime time(1237017909);
    const struct
    {
        const char* pszFormat;
        std::string expected;
    } cases[] = {
        {kStamp, "2009-03-14 08:05:09"},
        {"%A, %B %d %I %p %%", "Saturday, March 14 08 AM %"},
        {nullptr, ""},
        {"", ""},
        {"%", "%"},
        {"50%", "50%"},
        {"%Q %! %d", "%Q %! 14"},
        {"\xC4\xEA%Y\xD4\xC2%m", "\xC4\xEA"
                                 "2009\xD4\xC2"
                                 "03"},
        {"%300Y", std::string(296, '0') + "2009"},
        {"%2000000000Y", ""},
    };
    for (const auto& one : cases)
        EXPECT_EQ(time.Format(one.pszFormat).View(), one.expected) << one.pszFormat;
    const std::string text(100'000, 'x');
    EXPECT_EQ(time.Format((text + "%d" + text).c_str()).View(), text + "14" + text);
    std::string many, expected;
    for (int i = 0; i < 5000; ++i)
        many += "%A", expected += "Saturday";
    EXPECT_EQ(time.Format(many.c_str()).View(), expected);
}

} // namespace

#include "include/KXIniDataMgr.h"

#include "tests/support/TempDir.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <string>

namespace {

using Mgr = CKXIniDataMgr;

class KXIniDataMgr : public testing::Test
{
protected:
    // A file with one key of that text, and the arguments that name it.
    void Hold(const std::string& value) { m_dir.Write("t.ini", "[S]\r\nk=" + value + "\r\n"); }
    std::string Stored() const
    {
        const std::string text = m_dir.Read("t.ini");
        const std::size_t begin = text.find("k=") + 2;
        return text.substr(begin, text.find('\r', begin) - begin);
    }

    test::TempDir m_dir;
    const CString m_strFile = m_dir.Win("t.ini");
    const char* const m_file = m_strFile;
};

TEST_F(KXIniDataMgr, DefaultsStandInForWhatIsMissingOrEmpty)
{
    for (const char* value : std::initializer_list<const char*>{"", "\"\"", nullptr}) {
        if (value)
            Hold(value);
        else
            m_dir.Write("t.ini", "");
        EXPECT_EQ(Mgr::GetInteger(m_file, "S", "k", 5), 5);
        EXPECT_EQ(Mgr::GetInteger(m_file, "S", "k", 50, 1, 10), 50);
        EXPECT_EQ(Mgr::GetString(m_file, "S", "k", "d"), "d");
        EXPECT_EQ(Mgr::GetString(m_file, "S", "k", nullptr), "");
        EXPECT_EQ(Mgr::GetFloat(m_file, "S", "k", 1.5F), 1.5F);
        EXPECT_EQ(Mgr::GetDouble(m_file, "S", "k", 1.5), 1.5);
        EXPECT_TRUE(Mgr::GetBoolean(m_file, "S", "k", true));
        EXPECT_EQ(Mgr::GetBOOL(m_file, "S", "k", 7), 7);
        EXPECT_EQ(Mgr::GetRGB(m_file, "S", "k", 9), 9u);
        EXPECT_EQ(Mgr::GetIPAddress(m_file, "S", "k", 9), 9u);
        EXPECT_EQ(Mgr::GetDateTime(m_file, "S", "k", CTime(9)), CTime(9));
    }
    EXPECT_EQ(Mgr::GetInteger(nullptr, nullptr, nullptr, 5), 5);
    EXPECT_EQ(Mgr::WriteInteger(nullptr, nullptr, nullptr, 5), 0);
}

TEST_F(KXIniDataMgr, IntegerIsTheNumberAtTheStart)
{
    const std::pair<const char*, int> cases[] = {
        {"12", 12},      {"abc", 0},  {"12abc", 12},           {"-7.9", -7},
        {"\"  +3\"", 3}, {"0x10", 0}, {"2147483648", INT_MAX}, {"-99999999999999999999999", INT_MIN}};
    for (const auto& [text, number] : cases) {
        Hold(text);
        EXPECT_EQ(Mgr::GetInteger(m_file, "S", "k", 5), number) << text;
    }
    const std::pair<const char*, int> ranged[] = {{"10", 10}, {"1", 1},  {"11", 5},
                                                  {"0", 5},   {"-3", 5}, {"abc", 5}};
    for (const auto& [text, number] : ranged) {
        Hold(text);
        EXPECT_EQ(Mgr::GetInteger(m_file, "S", "k", 5, 1, 10), number) << text;
    }
    for (const int number : {0, -1, INT_MAX, INT_MIN}) {
        EXPECT_NE(Mgr::WriteInteger(m_file, "S", "k", number), 0);
        EXPECT_EQ(Stored(), std::to_string(number));
        EXPECT_EQ(Mgr::GetInteger(m_file, "S", "k", 5), number);
    }
}

TEST_F(KXIniDataMgr, StringIsCutAt255Bytes)
{
    EXPECT_NE(Mgr::WriteString(m_file, "S", "k", std::string(300, 'x').c_str()), 0);
    EXPECT_EQ(Mgr::GetString(m_file, "S", "k", ""), std::string(255, 'x').c_str());
    EXPECT_NE(Mgr::WriteString(m_file, "S", "k", "  blank  "), 0);
    EXPECT_EQ(Stored(), "  blank  ");
    EXPECT_EQ(Mgr::GetString(m_file, "S", "k", ""), "blank");
    EXPECT_NE(Mgr::WriteString(m_file, "S", "k", "\"  blank  \""), 0);
    EXPECT_EQ(Mgr::GetString(m_file, "S", "k", ""), "  blank  ");
    EXPECT_EQ(Mgr::WriteString(m_file, "S", "k", "two\nlines"), 0);
    EXPECT_NE(Mgr::WriteString(m_file, "S", "k", nullptr), 0);
    EXPECT_EQ(Mgr::GetString(m_file, "S", "k", "gone"), "gone");
}

TEST_F(KXIniDataMgr, DoublesReadAsTheCLibraryReadsThem)
{
    for (const char* text :
         {"1.5",      "-2",        "+.5",      "5.",       "1e3",       "1e",
          "1e+",      "abc",       "1,5",      "--1",      "+-1",       "-",
          ".",        "0x1.8p1",   "0X10",     "0x",       "0x-1",      "-0x2",
          "inf",      "-INFINITY", "1e308",    "1e309",    "-1e999",    "1e-400",
          "4.9e-324", "1e-310",    "-1e-5000", "0x1p2000", "0x1p-2000", "123456789.123456789"}) {
        Hold(text);
        const double expected = std::atof(text);
        EXPECT_EQ(Mgr::GetDouble(m_file, "S", "k", 7), expected) << text;
        EXPECT_EQ(Mgr::GetFloat(m_file, "S", "k", 7), static_cast<float>(expected)) << text;
    }
    Hold("nan");
    EXPECT_TRUE(std::isnan(Mgr::GetDouble(m_file, "S", "k", 7)));
    Hold("1" + std::string(300, '0'));
    EXPECT_DOUBLE_EQ(Mgr::GetDouble(m_file, "S", "k", 7), 1e254);
}

TEST_F(KXIniDataMgr, DoublesHaveSixDigitsBehindThePoint)
{
    const std::pair<double, const char*> cases[] = {{1.5, "1.500000"},
                                                    {0.12345678, "0.123457"},
                                                    {-0.0, "-0.000000"},
                                                    {1e15, "1000000000000000.000000"},
                                                    {HUGE_VAL, "inf"}};
    for (const auto& [number, text] : cases) {
        EXPECT_NE(Mgr::WriteDouble(m_file, "S", "k", number), 0);
        EXPECT_EQ(Stored(), text);
        EXPECT_EQ(Mgr::GetDouble(m_file, "S", "k", 7), std::atof(text));
    }
    EXPECT_NE(Mgr::WriteFloat(m_file, "S", "k", 1.5F), 0);
    EXPECT_EQ(Stored(), "1.500000");
    EXPECT_NE(Mgr::WriteFloat(m_file, "S", "k", 0.1F), 0);
    EXPECT_EQ(Stored(), "0.100000");
    EXPECT_NE(Mgr::WriteDouble(m_file, "S", "k", 9e247), 0);
    EXPECT_EQ(Stored().size(), 255u);
    EXPECT_DOUBLE_EQ(Mgr::GetDouble(m_file, "S", "k", 7), 9e247);
    EXPECT_EQ(Mgr::WriteDouble(m_file, "S", "k", 1e248), 0);
    EXPECT_EQ(Mgr::WriteDouble(m_file, "S", "k", -DBL_MAX), 0);
    EXPECT_NE(Mgr::WriteFloat(m_file, "S", "k", FLT_MAX), 0);
    EXPECT_EQ(Mgr::GetFloat(m_file, "S", "k", 7), FLT_MAX);
}

TEST_F(KXIniDataMgr, OnlyTheWordTrueIsTrue)
{
    const std::pair<const char*, bool> cases[] = {{"TRUE", true},   {"True", true}, {"tRuE", true},
                                                  {"1", false},     {"yes", false}, {"FALSE", false},
                                                  {"true!", false}, {"tru", false}, {"T\x12UE", false}};
    for (const auto& [text, bValue] : cases) {
        Hold(text);
        EXPECT_EQ(Mgr::GetBoolean(m_file, "S", "k", true), bValue) << text;
        EXPECT_EQ(Mgr::GetBOOL(m_file, "S", "k", 7), bValue ? 1 : 0) << text;
    }
    for (const bool bValue : {true, false}) {
        EXPECT_NE(Mgr::WriteBoolean(m_file, "S", "k", bValue), 0);
        EXPECT_EQ(Stored(), bValue ? "TRUE" : "FALSE");
        EXPECT_NE(Mgr::WriteBOOL(m_file, "S", "k", bValue ? 256 : 0), 0);
        EXPECT_EQ(Stored(), bValue ? "TRUE" : "FALSE");
    }
}

TEST_F(KXIniDataMgr, ColoursAndAddressesAreTheirNumbers)
{
    const std::pair<const char*, unsigned long> colours[] = {{"RGB(64,128,255)", 0xFF8040},
                                                             {"12,34,56", 0x38220C},
                                                             {"12 34 56", 0x38220C},
                                                             {"RGB(1,-2,3)", 0x030201},
                                                             {"RGB(1,2)", 9},
                                                             {"RGB(1,2,3,4)", 9},
                                                             {"RGB(1,2,256)", 9},
                                                             {"RGB(4294967297,2,3)", 0x030201},
                                                             {"4294967295 1 1", 9},
                                                             {"none", 9}};
    for (const auto& [text, colour] : colours) {
        Hold(text);
        EXPECT_EQ(Mgr::GetRGB(m_file, "S", "k", 9), colour) << text;
    }
    const std::pair<const char*, unsigned long> addresses[] = {{"IP(192.168.0.1)", 0xC0A80001},
                                                               {"255.255.255.255", 0xFFFFFFFF},
                                                               {"IP(1.2.3)", 9},
                                                               {"1.2.3.4.5", 9},
                                                               {"1.2.3.256", 9}};
    for (const auto& [text, address] : addresses) {
        Hold(text);
        EXPECT_EQ(Mgr::GetIPAddress(m_file, "S", "k", 9), address) << text;
    }
    EXPECT_NE(Mgr::WriteRGB(m_file, "S", "k", 0x77FF8040), 0);
    EXPECT_EQ(Stored(), "RGB(64,128,255)");
    EXPECT_EQ(Mgr::GetRGB(m_file, "S", "k", 9), 0xFF8040u);
    EXPECT_NE(Mgr::WriteIPAddress(m_file, "S", "k", 0xAA7F000001), 0);
    EXPECT_EQ(Stored(), "IP(127.0.0.1)");
    EXPECT_EQ(Mgr::GetIPAddress(m_file, "S", "k", 9), 0x7F000001u);
}

TEST_F(KXIniDataMgr, DatesAreLocalTime)
{
    const CTime fallback(9);
    for (const char* text : {"2009-13-01 00:00:00", "2009-03-01", "2009-03-01 10:20", "1899-01-01 00:00:00",
                             "2009-00-01 00:00:00", "2009-01-32 00:00:00", "2009-01-00 00:00:00",
                             "2009-01-01 24:00:00", "2009-01-01 00:60:00", "2009-01-01 00:00:60",
                             "2009/01/01 00:00:00", "soon", "1969-12-31 23:59:59"}) {
        Hold(text);
        EXPECT_EQ(Mgr::GetDateTime(m_file, "S", "k", fallback), fallback) << text;
    }
    const std::pair<const char*, const char*> cases[] = {{"2009-04-31 12:00:00", "2009-05-01 12:00:00"},
                                                         {"2009-3-4 5:6:7 and more", "2009-03-04 05:06:07"},
                                                         {"1900-01-01 00:00:00", "1900-01-01 00:00:00"},
                                                         {"9999-12-31 23:59:59", "9999-12-31 23:59:59"}};
    for (const auto& [text, expected] : cases) {
        Hold(text);
        const CTime time = Mgr::GetDateTime(m_file, "S", "k", fallback);
        EXPECT_NE(Mgr::WriteDateTime(m_file, "S", "k", time), 0);
        EXPECT_EQ(Stored(), expected);
        EXPECT_EQ(Mgr::GetDateTime(m_file, "S", "k", fallback), time);
    }
    EXPECT_NE(Mgr::WriteDateTime(m_file, "S", "k", CTime(std::numeric_limits<std::int64_t>::max())), 0);
    EXPECT_EQ(Stored(), "");
}

} // namespace

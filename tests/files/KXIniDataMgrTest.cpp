#include "include/KXIniDataMgr.h"

#include "tests/support/Test.h"

#include <cfloat>
#include <cmath>

namespace {

using Mgr = CKXIniDataMgr;

struct KXIniDataMgr : testing::Test
{
    void Hold(const std::string& value) const { m_dir.Write("t.ini", "[S]\r\nk=" + value + "\r\n"); }

    // The key's text after a write with that result.
    std::string After(int nResult) const
    {
        const std::string text = m_dir.Read("t.ini");
        const std::size_t begin = text.find("k=") + 2;
        return nResult ? text.substr(begin, text.find('\r', begin) - begin) : "<refused>";
    }

    // Texts as the key's value and the results of `get` for them, in turn.
    template <class Get>
    void ExpectReads(Get get, const char* pszRows) const
    {
        std::istringstream rows(pszRows);
        rows.unsetf(std::ios::basefield); // numbers tell their base
        decltype(get()) value;
        for (std::string text; rows >> text >> value;) {
            Hold(text);
            EXPECT_EQ(get(), value) << text;
        }
        EXPECT_TRUE(rows.eof());
    }

    test::TempDir m_dir;
    const CString m_strFile = m_dir.Win("t.ini");
    const char* const m_file = m_strFile;
};

TEST_F(KXIniDataMgr, DefaultsStandInForWhatIsMissingOrEmpty)
{
    for (const char* text : {"[S]\nk=\n", "[S]\nk=\"\"\n", ""}) {
        m_dir.Write("t.ini", text);
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
    ExpectReads([this] { return Mgr::GetInteger(m_file, "S", "k", 5); }, "12 12  abc 0  -7.9 -7  0x10 0");
    ExpectReads([this] { return Mgr::GetInteger(m_file, "S", "k", 5, 1, 10); },
                "10 10  1 1  11 5  0 5  -3 5  abc 5");
    for (const int number : {0, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(After(Mgr::WriteInteger(m_file, "S", "k", number)), std::to_string(number));
        EXPECT_EQ(Mgr::GetInteger(m_file, "S", "k", 5), number);
    }
}

TEST_F(KXIniDataMgr, StringIsStoredAsItStandsAndReadUpTo255Bytes)
{
    Hold(std::string(300, 'x'));
    EXPECT_EQ(Mgr::GetString(m_file, "S", "k", "d"), CString('x', 255));
    EXPECT_EQ(After(Mgr::WriteString(m_file, "S", "k", "  a=b;c  ")), "  a=b;c  ");
    EXPECT_EQ(After(Mgr::WriteString(m_file, "S", "k", "two\nlines")), "<refused>");
    EXPECT_NE(Mgr::WriteString(m_file, "S", "k", nullptr), 0);
    EXPECT_EQ(Mgr::GetString(m_file, "S", "k", "gone"), "gone");
}

TEST_F(KXIniDataMgr, DoublesReadAsTheCLibraryReadsThem)
{
    std::istringstream texts(
        "1.5 -2 +.5 5. 1e3 1e 1e+ abc 1,5 --1 +-1 - . 0x1.8p1 0X10 0x 0x-1 -0x2 0xinf 0xnan "
        "inf -INFINITY 1e308 1e309 -1e999 1e-999 4.9e-324 1e-310 -1e-5000 0x1p2000 "
        "0x1p-2000 123456789.123456789");
    for (std::string text; texts >> text;) {
        Hold(text);
        const double expected = std::atof(text.c_str());
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
    for (const double number : {1.5, 0.12345678, -0.0, 1e15, -1.0 / 3, HUGE_VAL, 9e247}) {
        CString strExpected;
        strExpected.Format("%f", number);
        EXPECT_EQ(After(Mgr::WriteDouble(m_file, "S", "k", number)), strExpected.GetString());
        EXPECT_EQ(Mgr::GetDouble(m_file, "S", "k", 7), std::atof(strExpected));
    }
    EXPECT_EQ(After(Mgr::WriteFloat(m_file, "S", "k", 1.5F)), "1.500000");
    EXPECT_EQ(After(Mgr::WriteFloat(m_file, "S", "k", 0.1F)), "0.100000");
    EXPECT_NE(Mgr::WriteFloat(m_file, "S", "k", FLT_MAX), 0);
    EXPECT_EQ(Mgr::GetFloat(m_file, "S", "k", 7), FLT_MAX);
    EXPECT_EQ(Mgr::WriteDouble(m_file, "S", "k", 1e248), 0);
    EXPECT_EQ(Mgr::WriteDouble(m_file, "S", "k", -DBL_MAX), 0);
}

TEST_F(KXIniDataMgr, OnlyTheWordTrueIsTrue)
{
    const auto isTrue = [this] {
        const bool bTrue = Mgr::GetBoolean(m_file, "S", "k", true);
        EXPECT_EQ(Mgr::GetBOOL(m_file, "S", "k", 7), bTrue ? 1 : 0);
        return bTrue;
    };
    ExpectReads(isTrue, "TRUE 1  True 1  tRuE 1  1 0  yes 0  FALSE 0  true! 0  tru 0  T\x12UE 0");
    EXPECT_EQ(After(Mgr::WriteBoolean(m_file, "S", "k", true)), "TRUE");
    EXPECT_EQ(After(Mgr::WriteBoolean(m_file, "S", "k", false)), "FALSE");
    EXPECT_EQ(After(Mgr::WriteBOOL(m_file, "S", "k", 256)), "TRUE");
    EXPECT_EQ(After(Mgr::WriteBOOL(m_file, "S", "k", 0)), "FALSE");
}

TEST_F(KXIniDataMgr, ColoursAndAddressesAreTheirNumbers)
{
    ExpectReads(
        [this] { return Mgr::GetRGB(m_file, "S", "k", 9); },
        "RGB(64,128,255) 0xFF8040  12,34,56 0x38220C  RGB(1,-2,3) 0x030201  RGB(1,2) 9  RGB(1,2,3,4) 9  "
        "RGB(1,2,256) 9  RGB(4294967295,1,1) 9  none 9");
    ExpectReads(
        [this] { return Mgr::GetIPAddress(m_file, "S", "k", 9); },
        "IP(192.168.0.1) 0xC0A80001  255.255.255.255 0xFFFFFFFF  IP(1.2.3) 9  1.2.3.4.5 9  1.2.3.256 9");
    EXPECT_EQ(After(Mgr::WriteRGB(m_file, "S", "k", 0x77C8A040)), "RGB(64,160,200)");
    EXPECT_EQ(Mgr::GetRGB(m_file, "S", "k", 9), 0xC8A040u);
    EXPECT_EQ(After(Mgr::WriteIPAddress(m_file, "S", "k", 0xAA7F000001)), "IP(127.0.0.1)");
    EXPECT_EQ(Mgr::GetIPAddress(m_file, "S", "k", 9), 0x7F000001u);
}

TEST_F(KXIniDataMgr, DatesAreLocalTime)
{
    // Each value is read and written again.
    const auto normal = [this] {
        const CTime time = Mgr::GetDateTime(m_file, "S", "k", CTime(9));
        const std::string text = After(Mgr::WriteDateTime(m_file, "S", "k", time));
        EXPECT_EQ(Mgr::GetDateTime(m_file, "S", "k", CTime(8)), time);
        return text;
    };
    const auto expect = [&](const char* pszText, const char* pszNormal) {
        Hold(pszText);
        EXPECT_EQ(normal(), pszNormal) << pszText;
    };
    for (const char* text :
         {"2009-13-01 00:00:00", "2009-03-01", "2009-03-01 10:20", "2009/01/01 00:00:00", "soon"})
        expect(text, "1970-01-01 00:00:09");
    expect("2009-04-31 12:00:00", "2009-05-01 12:00:00");
    expect("2009-3-4 5:6:7 and more", "2009-03-04 05:06:07");
    expect("1900-01-01 00:00:00", "1900-01-01 00:00:00");
    EXPECT_EQ(After(Mgr::WriteDateTime(m_file, "S", "k", CTime(INT64_MAX))), "");
}

} // namespace

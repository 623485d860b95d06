#include "include/KXXmlDomDocument.h"

#include "tests/support/Com.h"
#include "tests/support/Test.h"

#include <cfloat>
#include <cmath>

namespace {

using Quad = unsigned long long;

struct KXXmlTypedChild : testing::Test
{
    KXXmlTypedChild() { m_root = m_doc.CreateElement("r", nullptr); }

    // Makes `<r><n>text</n></r>`.
    CKXXmlDomElement Holding(const char* pszText)
    {
        m_root.SetText("");
        m_root.AppendChild(m_doc.CreateElement("n", pszText));
        return m_root;
    }

    // A child that is missing, and one without a text, for a type with a default.
    template <class Value>
    void ExpectDefaults(Value before, Value byDefault, bool bEmptyFails)
    {
        for (const bool bRequired : {false, true}) {
            Value value = before;
            EXPECT_EQ(Holding("5").GetChild("none", value, bRequired, byDefault), bRequired ? 0 : 1);
            EXPECT_EQ(value, byDefault);
            for (const char* pszEmpty : {"", static_cast<const char*>(nullptr)}) {
                value = before;
                EXPECT_EQ(Holding(pszEmpty).GetChild("n", value, bRequired, byDefault), bEmptyFails ? 0 : 1);
                EXPECT_EQ(value, bEmptyFails ? byDefault : before);
            }
        }
    }

    // The value that a text makes of another.
    template <class Value>
    Value Read(const char* pszText, Value value = 9)
    {
        EXPECT_EQ(Holding(pszText).GetChild("n", value, true, Value(3)), 1) << pszText;
        return value;
    }

    // A value is appended if that is forced, or if it isn't the default.
    template <class Value>
    void ExpectWrites(Value value, const std::string& text)
    {
        m_root.SetText("");
        m_root.AppendChild(m_doc, "n", value, false, value);
        EXPECT_EQ(m_root.GetText(), "");
        m_root.AppendChild(m_doc, "n", value, true, value);
        m_root.AppendChild(m_doc, "n", value, false, static_cast<Value>(value / 2 + 1));
        const std::string child = "<n>" + text + "</n>";
        EXPECT_STREQ(m_root.GetXml(), ("<r>" + child + child + "</r>").c_str());
    }

    test::Com m_com;
    CKXXmlDomDocument m_doc;
    CKXXmlDomElement m_root;
};

TEST_F(KXXmlTypedChild, DefaultsStandInForMissingChildren)
{
    ExpectDefaults<int>(9, -4, true);
    ExpectDefaults<long>(9, -4, true);
    ExpectDefaults<unsigned long>(9, 4, true);
    ExpectDefaults<double>(9.5, -4.5, true);
    ExpectDefaults<Quad>(9, 4, false);
}

TEST_F(KXXmlTypedChild, ReadsStrings)
{
    for (const bool bRequired : {false, true}) {
        CString str = "before";
        EXPECT_EQ(Holding("x").GetChild("none", str, bRequired), bRequired ? 0 : 1);
        EXPECT_EQ(str, "");
        for (const char* pszText : {"", " a <b> ", "\xC4\xE3"}) {
            str = "before";
            EXPECT_EQ(Holding(pszText).GetChild("n", str, bRequired), 1);
            EXPECT_EQ(str, pszText);
        }
    }
    // A pattern that lands on something else finds no child.
    int n = 1;
    EXPECT_EQ(Holding("7").GetChild("n/text()", n, true, 2), 0);
    EXPECT_EQ(n, 2);
    EXPECT_EQ(m_root.GetChild("/r/n", n, true, 2), 0); // the branch hangs in no document
    m_doc.SetDocumentElement(m_root);
    EXPECT_EQ(m_root.GetChild("/r/n", n, true, 2), 1);
    EXPECT_EQ(n, 7);
}

// A name that stands there several times is its first, wherever the reads before ended.
TEST_F(KXXmlTypedChild, ReadsTheFirstOfANameInAnyOrder)
{
    for (const auto& [pszName, pszText] :
         {std::pair("a", "1"), {"b", "2"}, {"a", "3"}, {"c", "4"}, {"b", "5"}, {"a", "6"}})
        m_root.AppendChild(m_doc.CreateElement(pszName, pszText));
    for (const char ch : std::string_view("abacbaaccb")) {
        int n = 0;
        EXPECT_EQ(m_root.GetChild(std::string(1, ch).c_str(), n, true, 0), 1);
        EXPECT_EQ(n, ch == 'a' ? 1 : ch == 'b' ? 2 : 4) << ch;
    }
}

TEST_F(KXXmlTypedChild, ReadsNumbers)
{
    const std::tuple<const char*, int, long, Quad> cases[] = {
        {" \n+5x", 5, 5, 5},
        {"-12", -12, -12, ULLONG_MAX - 11},
        {"1.9", 1, 1, 1},
        {"0x10", 0, 0, 0},
        {"99999999999", INT_MAX, 99999999999, 99999999999},
        {"9223372036854775808", INT_MAX, LONG_MAX, Quad{1} << 63},
        {"-9223372036854775808", INT_MIN, LONG_MIN, Quad{1} << 63},
        {"18446744073709551615", INT_MAX, LONG_MAX, ULLONG_MAX},
        {"-18446744073709551615", INT_MIN, LONG_MIN, 1},
        {"18446744073709551616", INT_MAX, LONG_MAX, ULLONG_MAX},
        {"-18446744073709551616", INT_MIN, LONG_MIN, ULLONG_MAX},
        {"abc", 9, 9, 9},
        {"-", 9, 9, 9},
        {"- 5", 9, 9, 9},
        {" ", 9, 9, 9},
    };
    for (const auto& [pszText, n, nLong, nUnsigned] : cases) {
        EXPECT_EQ(Read<int>(pszText), n) << pszText;
        EXPECT_EQ(Read<long>(pszText), nLong) << pszText;
        EXPECT_EQ(Read<unsigned long>(pszText), nUnsigned) << pszText;
        EXPECT_EQ(Read<Quad>(pszText), nUnsigned) << pszText;
    }
    const std::string zeros(400, '0');
    const std::pair<std::string, double> doubles[] = {
        {" -2.25x", -2.25},          {"abc", 0},
        {"1" + zeros, HUGE_VAL},     {"0." + zeros + "1e009", 0},
        {"0." + zeros + "1e401", 1}, {"1" + zeros + "e-400", 1},
    };
    for (const auto& [text, value] : doubles)
        EXPECT_EQ(Read<double>(text.c_str()), value) << text;
}

TEST_F(KXXmlTypedChild, WritesNumbers)
{
    ExpectWrites(INT_MIN, "-2147483648");
    ExpectWrites(0, "0");
    ExpectWrites(LONG_MIN, "-9223372036854775808");
    ExpectWrites(ULONG_MAX, "18446744073709551615");
    ExpectWrites(ULLONG_MAX, "-1");
    ExpectWrites(Quad{5}, "5");
    ExpectWrites(-0.25, "-0.250000");
    ExpectWrites(-DBL_MAX, std::to_string(-DBL_MAX));
}

TEST_F(KXXmlTypedChild, WritesStrings)
{
    m_root.AppendChild(m_doc, "a", CString(), false);
    m_root.AppendChild(m_doc, "b", CString(), true);
    m_root.AppendChild(m_doc, "c", CString(" x "), false);
    m_root.AppendChild(m_doc, "no name", CString("x"), true);
    EXPECT_EQ(m_root.GetXml(), "<r><b/><c> x </c></r>");
    EXPECT_EQ(m_root.SetChild("c", "y"), 1);
    EXPECT_EQ(m_root.SetChild("b", nullptr), 1);
    EXPECT_EQ(m_root.SetChild("none", "y"), 0);
    EXPECT_EQ(m_root.SetChild("c/text()", "y"), 0);
    EXPECT_EQ(m_root.GetXml(), "<r><b></b><c>y</c></r>");
    m_root.AppendChild(m_doc, "big", CString('x', 10'000'000), false);
    EXPECT_TRUE(m_doc.LoadXml(m_root.GetXml()));
    EXPECT_EQ(m_doc.GetDocumentElement().GetChild("big").GetText().GetLength(), 10'000'000);
    m_root.SetChild("c", CString('x', 10'000'001));
    EXPECT_EQ(m_root.GetChild("c").GetText(), "y");
}

TEST_F(KXXmlTypedChild, ReadsDates)
{
    const COleDateTime moment(2009, 3, 1, 12, 34, 56), bad(2009, 2, 30, 0, 0, 0);
    const auto read = [&](const char* pszText) {
        COleDateTime t(1.0);
        EXPECT_EQ(Holding(pszText).GetChild("n", t, true, COleDateTime(2.0)), 1) << pszText;
        return t;
    };
    for (const char* pszText : {"2009-03-01T12:34:56Z", "2009-03-01t12:34:56z", "2009-3-1 12:34:56.789+08:00",
                                " 2009-03-01 12:34:56 and more"})
        EXPECT_EQ(read(pszText), moment) << pszText;
    for (const char* pszText : {"nonsense", ""})
        EXPECT_EQ(read(pszText), bad) << pszText;
    COleDateTime null;
    null.SetStatus(COleDateTime::null);
    for (const bool bRequired : {false, true}) {
        COleDateTime t(1.0);
        EXPECT_EQ(m_root.GetChild("none", t, bRequired, null), bRequired ? 0 : 1);
        EXPECT_EQ(t, null);
    }
}

TEST_F(KXXmlTypedChild, WritesDatesWhateverTheirStatus)
{
    COleDateTime t(2009, 3, 1, 12, 34, 56);
    COleDateTime bad(2009, 4, 31, 0, 0, 0);
    COleDateTime never(1e300);
    never.SetStatus(COleDateTime::valid);
    COleDateTime null;
    null.SetStatus(COleDateTime::null);
    for (COleDateTime* pTime : {&t, &bad, &never, &null})
        m_root.AppendChild(m_doc, "t", *pTime, pTime == &null);
    EXPECT_STREQ(m_root.GetXml(),
                 "<r><t>2009-03-01 12:34:56</t><t>Invalid DateTime</t><t>Invalid DateTime</t>"
                 "<t></t></r>");
}

} // namespace

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

    template <class Value>
    struct Row
    {
        const char* pszText;
        Value value;
    };
    template <class Value>
    void ExpectReads(Value before, std::initializer_list<Row<Value>> rows)
    {
        for (const auto& row : rows) {
            Value value = before;
            EXPECT_EQ(Holding(row.pszText).GetChild("n", value, true, Value(3)), 1) << row.pszText;
            EXPECT_EQ(value, row.value) << row.pszText;
        }
    }

    // The text of an appended child, and its value for a reader.
    template <class Value>
    void ExpectWrites(std::initializer_list<Row<Value>> rows)
    {
        for (const auto& row : rows) {
            m_root.SetText("");
            m_root.AppendChild(m_doc, "n", row.value, false, row.value);
            EXPECT_EQ(m_root.GetXml(), "<r></r>") << row.pszText;
            m_root.AppendChild(m_doc, "n", row.value, true, row.value);
            EXPECT_STREQ(m_root.GetChild("n").GetText(), row.pszText);
            m_root.AppendChild(m_doc, "n", row.value, false, static_cast<Value>(row.value / 2 + 1));
            EXPECT_EQ(m_root.GetChilds("n").size(), 2u) << row.pszText;
            Value back{};
            EXPECT_EQ(m_root.GetChild("n[2]", back, true, Value()), 1);
            EXPECT_EQ(back, row.value) << row.pszText;
        }
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
    ExpectReads<int>(9, {{"-12", -12},
                         {" \n+5x", 5},
                         {"abc", 9},
                         {"-", 9},
                         {"- 5", 9},
                         {"0x10", 0},
                         {"1.9", 1},
                         {"99999999999", INT_MAX},
                         {"-99999999999999999999999", INT_MIN},
                         {" ", 9}});
    ExpectReads<long>(9, {{"-9223372036854775808", LONG_MIN}, {"9223372036854775808", LONG_MAX}, {"x", 9}});
    ExpectReads<unsigned long>(9, {{"18446744073709551615", ULONG_MAX},
                                   {"-1", ULONG_MAX},
                                   {"18446744073709551616", ULONG_MAX},
                                   {"x", 9}});
    ExpectReads<Quad>(9, {{"-1", ULLONG_MAX},
                          {"-9223372036854775808", Quad{1} << 63},
                          {"x", 9},
                          {" 7 ", 7},
                          {"18446744073709551615", ULLONG_MAX},
                          {"-18446744073709551615", 1},
                          {"-18446744073709551616", ULLONG_MAX}});
    ExpectReads<double>(9, {{"1.5e3x", 1500}, {" -2.25", -2.25}, {"abc", 0}, {"1e999", HUGE_VAL}});
    const std::string zeros(400, '0');
    ExpectReads<double>(9, {{("1" + zeros).c_str(), HUGE_VAL},
                            {("0." + zeros + "1e009").c_str(), 0},
                            {("0." + zeros + "1e401").c_str(), 1},
                            {("1" + zeros + "e-400").c_str(), 1}});
}

TEST_F(KXXmlTypedChild, WritesNumbersThatReadBack)
{
    ExpectWrites<int>({{"-2147483648", INT_MIN}, {"2147483647", INT_MAX}, {"0", 0}});
    ExpectWrites<long>({{"-9223372036854775808", LONG_MIN}, {"5", 5}});
    ExpectWrites<unsigned long>({{"18446744073709551615", ULONG_MAX}, {"5", 5}});
    ExpectWrites<Quad>({{"-1", ULLONG_MAX}, {"-9223372036854775808", Quad{1} << 63}, {"5", 5}});
    ExpectWrites<double>({{"1.500000", 1.5}, {"-0.250000", -0.25}, {"0.000000", 0}});
    double d = 0;
    m_root.SetText("");
    m_root.AppendChild(m_doc, "n", DBL_MAX, true, 0.0);
    EXPECT_EQ(m_root.GetChild("n", d, true, 0), 1);
    EXPECT_EQ(d, DBL_MAX);
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
    COleDateTime back;
    EXPECT_EQ(m_root.GetChild("t", back, true, COleDateTime()), 1);
    EXPECT_EQ(back, t);
}

} // namespace

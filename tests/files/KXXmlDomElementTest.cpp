#include "include/KXXmlDomDocument.h"

#include "tests/support/Com.h"
#include "tests/support/Test.h"

namespace {

ULONG RefsOf(const CKXXmlDomElement& element)
{
    element.GetElementPtr()->AddRef();
    return element.GetElementPtr()->Release();
}

struct KXXmlDomElement : testing::Test
{
    CKXXmlDomElement Root(const std::string& xml)
    {
        EXPECT_TRUE(m_doc.LoadXml(xml.c_str())) << xml;
        return m_doc.GetDocumentElement();
    }

    test::Com m_com;
    CKXXmlDomDocument m_doc;
};

TEST_F(KXXmlDomElement, NoOperationOfAnInvalidOneDoesAnything)
{
    CKXXmlDomElement none;
    CKXXmlDomElement child = m_doc.CreateElement("c", nullptr);
    EXPECT_FALSE(none.IsValid());
    EXPECT_EQ(none.GetElementPtr(), nullptr);
    EXPECT_THAT((std::array{none.GetName(), none.GetText(), none.GetXml()}), testing::Each(CString()));
    none.SetText("x");
    none.AppendChild(child);
    none.SetAttributeString("a", "x");
    none.SetAttributeInt32("a", 1);
    EXPECT_EQ(none.GetAttributeString("a"), "");
    EXPECT_EQ(none.GetChild("a", child), 0);
    EXPECT_FALSE(child.IsValid());
    EXPECT_TRUE(none.GetChilds("a").empty());
    EXPECT_FALSE(CKXXmlDomElement(none).IsValid());
    EXPECT_FALSE(CKXXmlDomElement(nullptr).IsValid());
}

TEST_F(KXXmlDomElement, CopiesShareOneElementAndCountIt)
{
    CKXXmlDomElement root = Root("<a><b>1</b></a>");
    EXPECT_EQ(RefsOf(root), 1u);
    {
        CKXXmlDomElement copy(root);
        CKXXmlDomElement raw(root.GetElementPtr());
        EXPECT_EQ(RefsOf(root), 3u);
        copy.SetText("new");
        EXPECT_EQ(root.GetText(), "new");
        CKXXmlDomElement& same = copy;
        copy = same;
        EXPECT_TRUE(copy.IsValid());
        EXPECT_EQ(RefsOf(root), 3u);
        copy = CKXXmlDomElement();
        EXPECT_FALSE(copy.IsValid());
        EXPECT_EQ(RefsOf(root), 2u);
        raw = m_doc.CreateElement("c", nullptr);
        EXPECT_EQ(RefsOf(root), 1u);
    }
    root.AppendChild(m_doc.CreateElement("d", "x"));
    EXPECT_EQ(RefsOf(root), 1u);
    EXPECT_EQ(RefsOf(root.GetChild("d")), 1u);
    EXPECT_EQ(root.GetChild("d").GetElementPtr(), root.GetChilds("d")[0].GetElementPtr());
}

TEST_F(KXXmlDomElement, OutlivesItsDocument)
{
    std::optional<CKXXmlDomDocument> doc(std::in_place);
    ASSERT_TRUE(doc->LoadXml("<a xmlns:p='urn:p'><p:b><c>1</c></p:b></a>"));
    CKXXmlDomElement b = doc->GetDocumentElement().GetChild("p:b");
    CKXXmlDomElement made = doc->CreateElement("made", "2");
    ASSERT_TRUE(doc->LoadXml("<other/>"));
    doc.reset();
    b.AppendChild(made);
    made = CKXXmlDomElement();
    EXPECT_EQ(b.GetXml(), "<p:b><c>1</c><made>2</made></p:b>");
    EXPECT_EQ(b.GetChild("/a/p:b/made").GetText(), "2");
}

// An element that is taken out of its place stays whole for those who hold a part of it.
TEST_F(KXXmlDomElement, PartsOutliveTheirPlace)
{
    CKXXmlDomElement root = Root("<a xmlns:p='urn:p'><b><p:c p:x='1'><d>1</d></p:c></b></a>");
    CKXXmlDomElement c = root.GetChild("b/p:c");
    CKXXmlDomElement d = c.GetChild("d");
    root.SetText("");
    EXPECT_EQ(root.GetXml(), "<a xmlns:p=\"urn:p\"></a>");
    c = CKXXmlDomElement();
    EXPECT_EQ(d.GetText(), "1");
    CKXXmlDomElement up = d.GetChild("../..");
    EXPECT_EQ(up.GetName(), "b");
    EXPECT_STREQ(up.GetXml(), "<b xmlns:p=\"urn:p\"><p:c p:x=\"1\"><d>1</d></p:c></b>");
    root = up;
    up = CKXXmlDomElement();
    EXPECT_EQ(root.GetChild("p:c/d").GetElementPtr(), d.GetElementPtr());
}

TEST_F(KXXmlDomElement, AppendMovesAndRefusesLoops)
{
    CKXXmlDomElement root = Root("<a><b><c/></b><d/></a>");
    CKXXmlDomElement b = root.GetChild("b");
    CKXXmlDomElement c = b.GetChild("c");
    c.AppendChild(b);
    c.AppendChild(root);
    c.AppendChild(c);
    EXPECT_EQ(root.GetXml(), "<a><b><c/></b><d/></a>");
    root.AppendChild(b);
    root.GetChild("d").AppendChild(c);
    EXPECT_EQ(root.GetXml(), "<a><d><c/></d><b/></a>");

    // From another document, that is gone afterwards, with what it had declared elsewhere.
    CKXXmlDomElement moved;
    {
        CKXXmlDomDocument other;
        ASSERT_TRUE(other.LoadXml("<o xmlns:p='urn:p'><p:m p:a='1' xml:id='i'>text<![CDATA[d]]>"
                                  "                    </p:m>rest</o>")); // blanks as indentation has them
        moved = other.GetDocumentElement().GetChild("p:m");
        c.AppendChild(moved);
        EXPECT_EQ(other.GetXml(), "<o xmlns:p=\"urn:p\">rest</o>");
    }
    EXPECT_STREQ(c.GetXml(), "<c><p:m xmlns:p=\"urn:p\" p:a=\"1\" xml:id=\"i\">text<![CDATA[d]]>"
                             "                    </p:m></c>");
    EXPECT_EQ(root.GetChild("d/c/p:m").GetElementPtr(), moved.GetElementPtr());
}

TEST_F(KXXmlDomElement, NestsNoDeeperThanItLoads)
{
    CKXXmlDomElement top = m_doc.CreateElement("e", "x");
    for (int n = 0; n < 3 * XML_MAX_DEPTH; ++n) { // from the inside
        CKXXmlDomElement outer = m_doc.CreateElement("e", nullptr);
        outer.AppendChild(top);
        if (!outer.GetChild("e").IsValid()) break;
        top = outer;
    }
    m_doc.SetDocumentElement(top);
    CKXXmlDomDocument again;
    EXPECT_TRUE(again.LoadXml(m_doc.GetXml()));
    int nDepth = 0;
    for (CKXXmlDomElement at = again.GetDocumentElement(); at.IsValid(); at = at.GetChild("e"))
        ++nDepth;
    EXPECT_EQ(nDepth, XML_MAX_DEPTH);
}

// Declarations around one place, wherever they were made.
TEST_F(KXXmlDomElement, DeclaresNoMoreThanItLoads)
{
    const auto declare = [](CKXXmlDomElement element, const char* pszPrefix) {
        int nTaken = 0;
        for (int n = 0; n <= XML_MAX_NAMESPACES; ++n) {
            const std::string name = "xmlns:" + (pszPrefix + std::to_string(n));
            element.SetAttributeString(name.c_str(), "u");
            nTaken += element.GetAttributeString(name.c_str()) == "u";
        }
        return nTaken;
    };
    CKXXmlDomElement root = Root("<a><b xmlns:x='u'/><b/><b/></a>");
    CKXXmlDomElement c = m_doc.CreateElement("c", nullptr);
    EXPECT_EQ(declare(c, "p"), XML_MAX_NAMESPACES);
    root.GetChild("b[1]").AppendChild(c);
    EXPECT_FALSE(root.GetChild("b/c").IsValid());
    root.GetChild("b[2]").AppendChild(c);
    EXPECT_TRUE(root.GetChild("b/c").IsValid());
    EXPECT_EQ(declare(root, "q"), 0);
    root.GetChild("b[2]").SetText("");
    EXPECT_EQ(declare(root, "q"), XML_MAX_NAMESPACES - 1);
    CKXXmlDomDocument again;
    EXPECT_TRUE(again.LoadXml(m_doc.GetXml()));
}

TEST_F(KXXmlDomElement, ReadsAttributes)
{
    CKXXmlDomElement root = Root("<a xmlns='urn:d' xmlns:p='urn:p' p:q='5' s='a&lt;&#x4F60;' e='' h='\"'/>");
    const std::pair<const char*, const char*> texts[] = {
        {"s", "a<\xC4\xE3"}, {"e", ""}, {"h", "\""},        {"p:q", "5"},
        {"none", ""},        {"q", ""}, {"xmlns", "urn:d"}, {"xmlns:p", "urn:p"},
        {"xmlns:q", ""},     {"", ""},  {"S", ""},
    };
    for (const auto& [name, text] : texts)
        EXPECT_STREQ(root.GetAttributeString(name), text) << name;
    EXPECT_EQ(root.GetAttributeString(nullptr), "");

    constexpr double kDefault = -7.5;
    const std::tuple<const char*, long, double> numbers[] = {
        {"-2147483648", -2147483648L, -2147483648.0},
        {"2147483648", 0, 2147483648.0}, // beyond 32 bits
        {"-1.5", -2, -1.5},
    };
    for (const auto& [pszText, nLong, dDouble] : numbers) {
        root.SetAttributeString("n", pszText);
        EXPECT_EQ(root.GetAttributeInt32("n"), nLong) << pszText;
        EXPECT_EQ(root.GetAttributeDouble("n", kDefault), dDouble) << pszText;
    }
    for (const char* pszText :
         {"1e400", "abc", "12abc", "1,5", "", "-", "+-5", "nan", "inf", "0x10", "\xC4\xE3"}) {
        root.SetAttributeString("n", pszText);
        EXPECT_EQ(root.GetAttributeInt32("n"), 0) << pszText;
        EXPECT_EQ(root.GetAttributeDouble("n", kDefault), kDefault) << pszText;
    }
    EXPECT_EQ(root.GetAttributeInt32("none"), 0);
    EXPECT_EQ(root.GetAttributeDouble("none", kDefault), kDefault);
}

TEST_F(KXXmlDomElement, ReadsDatesInAttributes)
{
    const COleDateTime moment(2009, 3, 1, 12, 34, 56), bad(2009, 2, 30, 0, 0, 0);
    COleDateTime null(4.5);
    null.SetStatus(COleDateTime::null);
    CKXXmlDomElement root = Root("<a/>");
    EXPECT_EQ(root.GetAttributeDateTime("d", null), null);
    const auto read = [&](const char* pszText) {
        root.SetAttributeString("d", pszText);
        return root.GetAttributeDateTime("d", null);
    };
    for (const char* pszText : {"2009-03-01 12:34:56", "2009-03-01T12:34:56", "2009-03-01 12:34:56.9",
                                "2009-03-01T12:34:56Z", "2009-03-01T12:34:56.123Z"})
        EXPECT_EQ(read(pszText), moment) << pszText;
    EXPECT_EQ(read(""), null);
    for (const char* pszText : {"T", ".", "2009-02-30"})
        EXPECT_EQ(read(pszText), bad) << pszText;
}

TEST_F(KXXmlDomElement, WritesAttributes)
{
    CKXXmlDomElement root = Root("<a x='1' xmlns:p='urn:p' p:y='2'><p:b/></a>");
    root.SetAttributeInt32("x", -5);
    root.SetAttributeInt32("big", 5000000000);
    root.SetAttributeString("p:y", "<\"&\n\x02");
    root.SetAttributeString("u:z", nullptr);
    for (const char* name : {"", "1", "a b", "xmlns:xml", "xmlns:xmlns"})
        root.SetAttributeString(name, "x");
    root.SetAttributeString(nullptr, "x");
    EXPECT_STREQ(root.GetXml(),
                 "<a xmlns:p=\"urn:p\" x=\"-5\" p:y=\"&lt;&quot;&amp;&#10;?\" big=\"5000000000\" "
                 "u:z=\"\"><p:b/></a>");
    root.SetAttributeString("xmlns:p", "urn:q");
    root.SetAttributeString("xmlns:r", "urn:r");
    EXPECT_EQ(root.GetAttributeString("xmlns:p"), "urn:q");
    root.SetAttributeString("xmlns:r", "a&b<c");
    root.SetAttributeString("xmlns:r", ""); // only the default one may be none
    EXPECT_EQ(root.GetAttributeString("xmlns:r"), "a&b<c");
    EXPECT_TRUE(root.GetChild("p:b").IsValid());
    // More than would be loaded again.
    root.SetAttributeString("x", CString('x', (1 << 20) + 1));
    EXPECT_EQ(root.GetAttributeString("x"), "-5");
    root.SetAttributeString("x", CString('x', 1 << 20));
    EXPECT_TRUE(m_doc.LoadXml(m_doc.GetXml()));
    EXPECT_EQ(m_doc.GetDocumentElement().GetAttributeString("x").GetLength(), 1 << 20);
}

// Names go with their prefixes, whatever those are made to mean.
TEST_F(KXXmlDomElement, FollowsLaterDeclarations)
{
    CKXXmlDomElement root = Root("<a xmlns:p='u' xmlns:q='v' p:x='1' q:x='2'><p:b><p:c/><d xmlns:p='w'>"
                                 "<p:e/></d></p:b></a>");
    root.SetAttributeString("xmlns:q", "u");
    root.SetAttributeString("q:x", "3");
    EXPECT_EQ(root.GetAttributeString("p:x"), "1");
    EXPECT_EQ(root.GetAttributeString("q:x"), "3");
    CKXXmlDomElement b = root.GetChild("p:b");
    b.SetAttributeString("p:i", "1");
    b.SetAttributeString("xmlns:p", "v");
    EXPECT_TRUE(b.GetChild("p:c").IsValid());
    EXPECT_TRUE(
        b.GetChild("../*[namespace-uri()='v'][@*[namespace-uri()='v']]/*[namespace-uri()='v']").IsValid());
    EXPECT_TRUE(b.GetChild("d/*[namespace-uri()='w']").IsValid());
    EXPECT_FALSE(root.GetChild("p:b").IsValid());
    EXPECT_STREQ(b.GetXml(), "<p:b xmlns:p=\"v\" p:i=\"1\"><p:c/><d xmlns:p=\"w\"><p:e/></d></p:b>");
}

TEST_F(KXXmlDomElement, TakesByte80AndCharacter80ForTwoThings)
{
    const std::string longer(80, 'x');
    for (const std::string& head : {std::string(), longer}) {
        const std::string character = head + "\xC2\x80"; // in UTF-8
        CKXXmlDomElement root = Root("<r/>");
        root.SetText((head + "\x80").c_str()); // a byte that isn't ASCII
        const test::CodePage utf8(65001);
        EXPECT_STRNE(root.GetText(), character.c_str());
        root = Root("<r>" + character + "</r>");
        EXPECT_STREQ(root.GetText(), character.c_str());
    }
}

TEST_F(KXXmlDomElement, FindsByPattern)
{
    CKXXmlDomElement root =
        Root("<r xmlns='urn:d' xmlns:p='urn:p'>\n<a i='1'>one</a><b><a i='2'>two<c/></a></b><a i='3'/>"
             "<p:a i='4'/><q:a xmlns:q='urn:p' i='5'/><!--a--><deep xmlns:z='urn:z'><z:a i='6'/></deep></r>");
    // The attributes `i` of all, "-" for what is no element. `q` is what the document declares it as.
    std::istringstream cases(
        "a 13  b/a 2  //a 123  ./a 13  a[2] 3  a[@i='3']|a[1] 13  */a 2  /r/b/a 2  p:a 45  ./p:a 45  "
        "q:a 45  ./q:a 45  deep/z:a 6  a[last()]/preceding-sibling::a 1  a/@i --  a/text() -  "
        "comment() -  / -");
    for (std::string pattern, expected; cases >> pattern >> expected;) {
        std::string found;
        const auto all = root.GetChilds(pattern.c_str());
        for (CKXXmlDomElement element : all)
            found += element.IsValid() ? element.GetAttributeString("i").GetString() : "-";
        EXPECT_EQ(found, expected) << pattern;
        EXPECT_EQ(root.GetChild(pattern.c_str()).GetElementPtr(), all.at(0).GetElementPtr()) << pattern;
    }
    for (const char* pszNone : {"A", "none", "b/none", "x:a", "./x:a", "a[", "count(a)", "'text'", "id('x')",
                                "$v", "f()", "", "\x81"}) {
        EXPECT_TRUE(root.GetChilds(pszNone).empty()) << pszNone;
        EXPECT_FALSE(root.GetChild(pszNone).IsValid()) << pszNone;
    }
    for (CKXXmlDomElement element : root.GetChilds("a/namespace::*"))
        EXPECT_FALSE(element.IsValid());
    EXPECT_FALSE(root.GetChild(nullptr).IsValid());
    EXPECT_EQ(root.GetChild("b").GetText(), "two");
    EXPECT_EQ(root.GetChild("b/a").GetChild("../..").GetElementPtr(), root.GetElementPtr());
    // A prefix that is declared after the element was named.
    root.AppendChild(m_doc.CreateElement("n:made", nullptr));
    EXPECT_TRUE(root.GetChild("n:made").IsValid());
    EXPECT_FALSE(root.GetChild("./n:made").IsValid());
    root.SetAttributeString("xmlns:n", "urn:n");
    EXPECT_TRUE(root.GetChild("./n:made").IsValid());
}

} // namespace

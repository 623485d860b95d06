#include "include/KXXmlDomDocument.h"
#include "tests/platform/xml/Numbered.h"
#include "tests/support/Com.h"
#include "tests/support/Test.h"

namespace {

struct XPath : testing::Test
{
    CKXXmlDomElement Root(const std::string& xml)
    {
        EXPECT_TRUE(m_doc.LoadXml(xml.c_str()));
        return m_doc.GetDocumentElement();
    }
    std::size_t Count(const std::string& xml, const char* pszPattern)
    {
        return Root(xml).GetChilds(pszPattern).size();
    }

    test::Com m_com;
    test::CodePage m_page{65001};
    CKXXmlDomDocument m_doc;
};

// Some of them in a root.
std::string Records(int nCount, const std::string& text)
{
    return "<r>" + test::Numbered(nCount, text) + "</r>";
}

// However many steps that takes.
TEST_F(XPath, FindsAllThatIsRight)
{
    const std::string items = Records(200'000, "<item id='$'><name>id$</name></item>");
    EXPECT_EQ(Count(items, "//item[substring(name,3)=@id and @id>=0]"), 200'000u);
    EXPECT_EQ(Count(Records(2000, "<i n='$'/>"), "i[not(@n=preceding-sibling::i/@n)]"), 2000u);
    // Each parent once, in time that follows their number.
    const std::string pairs = Records(200'000, "<a><b/><b/></a>");
    EXPECT_EQ(Count(pairs, "//a/b/.."), 200'000u);
    EXPECT_EQ(Count(pairs, "a/b/../.."), 1u);
}

// Any thread's stack must do.
TEST_F(XPath, PatternsNestToABound)
{
    CKXXmlDomElement root = Root("<r><a/></r>");
    const auto nested = [](int nDepth) {
        return test::Numbered(nDepth, "(") + "a" + test::Numbered(nDepth, ")");
    };
    EXPECT_TRUE(root.GetChild(nested(50).c_str()).IsValid());
    EXPECT_FALSE(root.GetChild(nested(300).c_str()).IsValid());
}

TEST_F(XPath, KnowsIdentitiesThatAreDeclared)
{
    CKXXmlDomElement root =
        Root("<!DOCTYPE r [<!ATTLIST e k ID #IMPLIED>]><r><e k='k1' v='1'/><e k='k2' v='2'/>"
             "<f k='k3'/><ref>k2</ref><ref>k1</ref></r>");
    const auto found = [&](const char* pszPattern) {
        std::string all;
        for (CKXXmlDomElement e : root.GetChilds(pszPattern))
            all += e.GetAttributeString("v");
        return all;
    };
    EXPECT_EQ(found("id('k1')"), "1");
    EXPECT_EQ(found("id(' k2  k1 k3 none')"), "12");
    EXPECT_EQ(found("id(ref)"), "12");
    EXPECT_EQ(found("id('k3')"), ""); // none by its declaration
    root.GetChild("e[1]").SetAttributeString("k", "k9");
    EXPECT_EQ(found("id('k1 k9')"), "1");
    root.GetChild("ref").SetText("k9");
    root.GetChild("ref").AppendChild(root.GetChild("e[2]"));
    EXPECT_EQ(found("id('k2')"), "2");
    root.GetChild("ref").SetText("gone");
    EXPECT_EQ(found("id('k2')"), "");
    CKXXmlDomElement made = m_doc.CreateElement("e", nullptr);
    made.SetAttributeString("v", "3");
    root.AppendChild(made);
    made.SetAttributeString("k", "k2");
    EXPECT_EQ(found("id('k2')"), "3");
    CKXXmlDomDocument other; // which declares none
    other.SetDocumentElement(made);
    root.AppendChild(made);
    EXPECT_EQ(found("id('k2')"), "3");
}

TEST_F(XPath, TellsTheDefaultNamespace)
{
    CKXXmlDomElement root = Root("<r xmlns='u' xmlns:p='v'><a/><p:b/><c xmlns='w' xmlns:p='q'><p:g/></c><d "
                                 "xmlns=''><y:f xmlns:y='z'/></d><x:e/></r>");
    const auto names = [&](const char* pszPattern) {
        std::string all;
        for (CKXXmlDomElement e : root.GetChilds(pszPattern))
            all += e.GetName() + " ";
        return all;
    };
    EXPECT_EQ(names("*[namespace-uri()='u']"), "a ");
    EXPECT_EQ(names("*[namespace-uri(.)='u' or namespace-uri(.)='v']"), "a p:b ");
    EXPECT_EQ(names("*[namespace-uri()='w']"), "c ");
    EXPECT_EQ(names("*[namespace-uri()='']"), "d x:e ");
    EXPECT_EQ(names("a | c"), "a c ");
    EXPECT_TRUE(root.GetChild("c").GetChild("p:g").IsValid()); // by the nearest declaration
    EXPECT_EQ(names("p:b"), "p:b ");                           // which means nothing behind its element
    EXPECT_EQ(names("d/y:f"), "y:f ");                         // a prefix that is declared below
    root.GetChild("d/y:f").SetAttributeString("xmlns:y", "new");
    EXPECT_EQ(names("d/y:f"), "y:f ");
}

// All children of a record with many, in the order in which they lie, backwards and mixed, while some come.
TEST_F(XPath, ReadsManyChildrenInAnyOrder)
{
    constexpr int kMany = 50'000;
    CKXXmlDomElement root = Root(Records(kMany, "<n$>$</n$>"));
    for (const long nStep : {1L, kMany - 1L, 7919L})
        for (long n = 0; n < kMany; ++n) {
            const long nAt = n * nStep % kMany;
            int nValue = 0;
            EXPECT_EQ(root.GetChild(("n" + std::to_string(nAt)).c_str(), nValue, true, 0), 1);
            EXPECT_EQ(nValue, nAt);
        }
    for (int n = 0; n < 20'000; ++n) { // what isn't there yet is looked for and appended
        const std::string name = "m" + std::to_string(n);
        EXPECT_FALSE(root.GetChild(name.c_str()).IsValid());
        root.AppendChild(m_doc, name.c_str(), n, true, 0);
        EXPECT_TRUE(root.GetChild(name.c_str()).IsValid());
    }
    // An element that leaves is found no more, and the next one of its name is.
    CKXXmlDomElement first = root.GetChild("n40000");
    root.AppendChild(m_doc, "n40000", 1, true, 0);
    EXPECT_EQ(root.GetChild("n40000").GetElementPtr(), first.GetElementPtr());
    m_doc.CreateElement("other", nullptr).AppendChild(first);
    EXPECT_EQ(root.GetChild("n40000").GetText(), "1");
    root.SetText("");
    EXPECT_FALSE(root.GetChild("n40001").IsValid());
}

TEST_F(XPath, FindsAPlainNameBehindManyWithAPrefixWhichMayLeave)
{
    CKXXmlDomElement root = Root("<r xmlns:p='u'>" + test::Numbered(100, "<p:x/>") + "<x/></r>");
    EXPECT_EQ(root.GetChild("x").GetName(), "x");
    m_doc.CreateElement("other", nullptr).AppendChild(root.GetChild("p:x"));
    EXPECT_EQ(root.GetChild("x").GetName(), "x");
    CKXXmlDomDocument other; // what it gets there is found when it is back
    other.SetDocumentElement(root);
    root.AppendChild(other, "y", 1, true, 0);
    m_doc.SetDocumentElement(root);
    EXPECT_EQ(root.GetChild("y").GetText(), "1");
}

// Neither makes the other forget what is known of it.
TEST_F(XPath, ReadsTwoRecordsInTurnAndMovesAll)
{
    constexpr int kMany = 50'000;
    const auto name = [](long n) { return "n" + std::to_string(n); };
    const std::string record = Records(kMany, "<n$>$</n$>");
    CKXXmlDomElement root = Root("<p>" + record + record + "</p>");
    CKXXmlDomElement one = root.GetChild("r[1]");
    CKXXmlDomElement two = root.GetChild("r[2]");
    for (int n = kMany - 1; n >= 0; --n)
        ASSERT_EQ(one.GetChild(name(n).c_str()).GetText(), two.GetChild(name(n).c_str()).GetText());
    for (int n = 0; n < kMany; ++n)
        two.AppendChild(one.GetChild(name(n * 7919L % kMany).c_str()));
    EXPECT_EQ(two.GetChilds("*").size(), 2u * kMany);
    two.GetChild("n49999").AppendChild(two.GetChild("n49998"));
    EXPECT_EQ(two.GetChild("n49998").GetText(), "49998"); // the second of the name, in its place
    EXPECT_FALSE(two.GetChild("n49998").GetChild("n49998").IsValid());
}

} // namespace

#include "include/KXXmlDomDocument.h"
#include "include/platform/Xml.h"
#include "tests/platform/xml/Numbered.h"
#include "tests/support/Com.h"
#include "tests/support/Test.h"

#include <ctime>

namespace {

using test::Numbered;

struct HostileXml : testing::Test
{
    // Whether a file of these bytes is loaded; in any case within 2 s of the processor and 512 MiB, of which
    // the sanitizers take more.
    bool Loads(const std::string& bytes)
    {
#ifdef KX_SANITIZED
        constexpr double kSeconds = 10;
        constexpr long kKilobytes = 1 << 20;
#else
        constexpr double kSeconds = 2;
        constexpr long kKilobytes = 512 << 10;
#endif
        m_dir.Write("x.xml", bytes);
        const std::clock_t start = std::clock();
        const bool bLoaded = m_doc.Load(m_dir.Win("x.xml"));
        EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, kSeconds);
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        EXPECT_LT(usage.ru_maxrss, kKilobytes);
        return bLoaded;
    }
    CKXXmlDomElement Root()
    {
        return m_doc.GetDocumentElement();
    }

    test::Com m_com;
    test::TempDir m_dir;
    CKXXmlDomDocument m_doc;
};

// Entities elsewhere are named and not read: references to it stay, and count as empty texts.
TEST_F(HostileXml, NothingOutsideIsFetched)
{
    m_dir.Write("secret.txt", "secret");
    m_dir.Write("x.dtd", "<!ENTITY e 'secret'>");
    const std::string file = "file://" + m_dir.Path("secret.txt");
    // A type, and whether a reference may stand in a text and in an attribute.
    const std::tuple<std::string, bool, bool> cases[] = {
        {"<!DOCTYPE a SYSTEM 'x.dtd'>", true, true},
        {"<!DOCTYPE a PUBLIC '-//X//Y' 'http://127.0.0.1:1/x.dtd'>", true, true},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM 'secret.txt'>]>", true, false},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM '" + file + "'>]>", true, false},
        {"<!DOCTYPE a [<!ENTITY % p SYSTEM 'x.dtd'> %p;]>", true, true},
        {"<!DOCTYPE a [<!ENTITY % p SYSTEM 'x.dtd'><!ENTITY % q '<!ENTITY f \"&#37;p;\">'> %q;]>", true,
         true},
        {"<!DOCTYPE a [<!ENTITY e PUBLIC 'x' 'http://127.0.0.1:1/'>]>", true, false},
        {"<!DOCTYPE a SYSTEM 'x.dtd' [<!NOTATION n SYSTEM 'n'><!ENTITY e SYSTEM 'x' NDATA n>]>", false,
         false},
        {"<!DOCTYPE a [<!ENTITY f SYSTEM 'x'>]>", false, false}, // nothing else could declare `e`
    };
    for (const auto& [doctype, bInText, bInAttribute] : cases) {
        EXPECT_TRUE(Loads(doctype + "<a/>")) << doctype;
        EXPECT_EQ(Loads(doctype + "<a b='&e;'/>"), bInAttribute) << doctype;
        EXPECT_EQ(Loads(doctype + "<a>x&e;<b>&e;</b>y</a>"), bInText) << doctype;
        if (!bInText) continue;
        EXPECT_EQ(Root().GetText(), "xy") << doctype;
        EXPECT_EQ(Root().GetChild("//b[.='']").GetXml(), "<b>&e;</b>") << doctype;
    }
    for (const std::string elsewhere : {"SYSTEM 'x.dtd' [", "[<!ENTITY % p SYSTEM 'x.dtd'> %p;"})
        EXPECT_TRUE(Loads("<!DOCTYPE a " + elsewhere + "<!ENTITY f '<b>&e;</b>'>]><a>&f;</a>")) << elsewhere;
    EXPECT_TRUE(Loads("<a xmlns:xi='http://www.w3.org/2001/XInclude'><xi:include href='secret.txt' "
                      "parse='text'/></a>"));
    EXPECT_EQ(Root().GetText(), "");
    // Each names a catalog, which nobody reads.
    EXPECT_TRUE(Loads(Numbered(300'000, "<?oasis-xml-catalog catalog='x'?>") + "<a/>"));
    EXPECT_EQ(Root().GetChilds("/processing-instruction('oasis-xml-catalog')[300000]").size(), 1u);
    // Entities of its own are text.
    EXPECT_TRUE(Loads(
        "<!DOCTYPE a [<!ENTITY % p '100&#37;'><!ENTITY y '[&x;]'><!ENTITY x 'A &amp; &#66;'><!ELEMENT a ANY>"
        "<!ATTLIST a d CDATA 'def'>]><a b='&y;'>&y;<c>&x;</c></a>"));
    EXPECT_EQ(Root().GetText(), "[A & B]A & B");
    EXPECT_EQ(Root().GetAttributeString("b"), "[A & B]");
}

TEST_F(HostileXml, EntitiesDontMultiply)
{
    // Entities of which each refers some times to the one before it.
    const auto chain = [](int nEntities, const std::string& declared, const std::string& first,
                          const std::string& sign, int nTimes) {
        std::string type = "<!DOCTYPE a [<!ENTITY " + declared + "0 '" + first + "'>";
        for (int n = 1; n < nEntities; ++n)
            type += "<!ENTITY " + declared + std::to_string(n) + " '" +
                    Numbered(nTimes, sign + "e" + std::to_string(n - 1) + ";") + "'>";
        return type;
    };
    const std::string laughs = chain(10, "e", "ha", "&", 10), nested = chain(33, "% e", "", "&#37;", 1);
    EXPECT_FALSE(Loads(laughs + "]><a>&e9;</a>"));
    EXPECT_FALSE(Loads(laughs + "]><a b='&e9;'/>"));
    EXPECT_FALSE(Loads(chain(10, "% e", "", "&#37;", 100) + "%e9;]><a/>"));
    EXPECT_TRUE(Loads(nested + "%e31;]><a/>")); // 32 within each other
    EXPECT_FALSE(Loads(nested + "%e32;]><a/>"));
    const std::string one = "<!DOCTYPE a [<!ENTITY e '<b>x</b>'>]><a>&e;"; // of 40, and each further one of
    EXPECT_TRUE(Loads(one + Numbered(95'237, "&e;") + "</a>"));            // 105, with its two nodes
    EXPECT_FALSE(Loads(one + Numbered(95'238, "&e;") + "</a>"));
    const std::string big = "<!DOCTYPE a [<!ENTITY e '" + Numbered(1000, "<b/>") + "'>]><a>";
    EXPECT_FALSE(Loads(big + Numbered(100'000, "&e;") + "</a>"));
    // Each is appended to the whole text before it.
    const std::string text = "<!DOCTYPE a [<!ENTITY e 'x'>]><a>" + std::string(9'000'000, 'x');
    EXPECT_TRUE(Loads(text + Numbered(100, "&e;") + "</a>"));
    EXPECT_FALSE(Loads(text + Numbered(200'000, "&e;") + "</a>"));
    for (const std::string loop :
         {"<!ENTITY a '&b;'><!ENTITY b '&a;'>", "<!ENTITY a '&a;'>", "<!ENTITY % p '&#37;p;'> %p;",
          "<!ENTITY % p '<!ENTITY a \"x\">'> %p; %p;"})
        EXPECT_FALSE(Loads("<!DOCTYPE a [" + loop + "]><a>&a;</a>")) << loop;
    const auto references = [](int nCount) {
        return "<!DOCTYPE a [<!ENTITY % p ''>" + Numbered(nCount, "%p;") + "]><a/>";
    };
    EXPECT_TRUE(Loads(references(9'999))); // of 1,000 each, as the declaration is
    EXPECT_FALSE(Loads(references(10'000)));
    // One name for two kinds of entities.
    EXPECT_FALSE(Loads("<!DOCTYPE a [<!ENTITY % e 'x'><!ENTITY e '" + std::string(4000, 'x') + "'>]><a>" +
                       Numbered(100'000, "&e;") + "</a>"));
    const std::string defaults = "<!DOCTYPE a [" + Numbered(900, "<!ATTLIST b x$ CDATA '1'>");
    EXPECT_TRUE(Loads(defaults + "]><a><b/></a>"));
    EXPECT_FALSE(Loads(defaults + "]><a>" + Numbered(100'000, "<b/>") + "</a>"));
    EXPECT_FALSE(Loads("<!DOCTYPE a [<!ATTLIST b x CDATA '" + std::string(500'000, 'x') + "'>]><a>" +
                       Numbered(100'000, "<b/>") + "</a>"));
}

TEST_F(HostileXml, DeclarationsAreBounded)
{
    const auto values = [](int nCount) {
        return "<!DOCTYPE a [<!ATTLIST a b (x" + Numbered(nCount, "|x$") + ") #IMPLIED>]><a/>";
    };
    EXPECT_TRUE(Loads(values(5000)));
    EXPECT_FALSE(Loads(values(1'000'000))); // each would be compared with all before it
    EXPECT_TRUE(Loads("<!DOCTYPE a [<!ENTITY e 'x'>]><a>" + Numbered(100'000, "text ") + "</a>"));
    // Each name is looked for among those before it.
    const auto names = [](int nCount) { return "<a>" + Numbered(nCount, "<n$/>") + "</a>"; };
    EXPECT_TRUE(Loads(names(XML_MAX_NAMES - 100)));
    for (int n = 0; n < 100; ++n)
        m_doc.CreateElement(("m" + std::to_string(n)).c_str(), nullptr);
    Root().SetAttributeString("one-more", "x");
    EXPECT_EQ(Root().GetAttributeString("one-more"), "");
    EXPECT_FALSE(Loads(names(XML_MAX_NAMES + 1)));
    EXPECT_FALSE(Loads(names(1'000'000)));
    EXPECT_FALSE(Loads("<a>" + Numbered(200'000, "<p$:b/>") + "</a>"));
}

TEST_F(HostileXml, ShapesAreBounded)
{
    EXPECT_FALSE(Loads(Numbered(1'000'000, "<a>")));
    EXPECT_FALSE(Loads(Numbered(1'000'000, "<a>") + Numbered(1'000'000, "</a>")));
    EXPECT_TRUE(Loads(Numbered(XML_MAX_DEPTH, "<a>") + Numbered(XML_MAX_DEPTH, "</a>")));
    EXPECT_FALSE(Loads(Numbered(XML_MAX_DEPTH + 1, "<a>") + Numbered(XML_MAX_DEPTH + 1, "</a>")));
    EXPECT_TRUE(Loads("<a b='" + std::string(XML_MAX_ATTRIBUTE, 'x') + "'/>"));
    for (const int nMegabytes : {2, 12, 50})
        EXPECT_FALSE(Loads("<a b='" + std::string(static_cast<std::size_t>(nMegabytes) << 20, 'x') + "'/>"));
    const auto attributes = [](int nCount) { return "<a" + Numbered(nCount, " b$='x'") + "/>"; };
    EXPECT_TRUE(Loads(attributes(XML_MAX_ATTRIBUTES)));
    Root().SetAttributeString("more", "x");
    EXPECT_EQ(Root().GetAttributeString("more"), "");
    EXPECT_FALSE(Loads(attributes(XML_MAX_ATTRIBUTES + 1)));
    EXPECT_FALSE(Loads(attributes(1'000'000)));
    const std::string half = "<a" + Numbered(XML_MAX_NAMESPACES / 2, " xmlns:p$='u'");
    EXPECT_TRUE(Loads(half + ">" + half + "/></a>"));
    EXPECT_FALSE(Loads(half + "><b xmlns='u'>" + half + "/></b></a>"));
    EXPECT_FALSE(Loads("<a" + Numbered(1'000'000, " xmlns:p$='x'") + "/>"));
    // An entity's elements lie in those around it, and its text is part of the text around it.
    const auto deep = [](int nDepth) { return Numbered(nDepth, "<a>") + "x" + Numbered(nDepth, "</a>"); };
    const std::string entity = "<!DOCTYPE a [<!ENTITY e '" + deep(XML_MAX_DEPTH / 2) + "'>]>";
    const auto around = [&](int nDepth) {
        return entity + Numbered(nDepth, "<a>") + "&e;" + Numbered(nDepth, "</a>");
    };
    EXPECT_TRUE(Loads(around(XML_MAX_DEPTH / 2)));
    EXPECT_FALSE(Loads(around(XML_MAX_DEPTH / 2 + 1)));
    EXPECT_FALSE(
        Loads("<!DOCTYPE a [<!ENTITY e '0123456789'>]><a>" + std::string(XML_MAX_TEXT - 1, 'x') + "&e;</a>"));
    EXPECT_FALSE(Loads("<" + std::string(2'000'000, 'a') + "/>"));
    EXPECT_TRUE(Loads("<a>" + std::string(XML_MAX_TEXT, 'x') + "</a>"));
    EXPECT_FALSE(Loads("<a>" + std::string(XML_MAX_TEXT + 100'000, 'x') + "</a>"));
    EXPECT_FALSE(Loads("<a><![CDATA[" + std::string(12 << 20, 'x') + "]]></a>"));
    EXPECT_FALSE(Loads("<a><!--" + std::string(12 << 20, 'x') + "--></a>"));
    EXPECT_TRUE(Loads("<a>" + Numbered(500'000, "<b/>") + "</a>"));
}

TEST_F(HostileXml, BrokenBytesAreRefused)
{
    using namespace std::string_literals;
    for (const std::string& bytes :
         {"<a>\xFF</a>"s, "<a>\xC3</a>"s, "<a>\xED\xA0\x80</a>"s, "<a>\xF4\x90\x80\x80</a>"s,
          "<a>\xC0\x80</a>"s, "<a b='\x80'/>"s, "<\xFF/>"s, "<a>\xEF\xBF\xBF</a>"s, "<a>\0</a>"s,
          "\xFF\xFE<\0a\0/\0>"s, "\xFF\xFE<\0a\0>\0\0\xD8<\0/\0a\0>\0"s, Numbered(1'000'000, "\xFF\xFE")})
        EXPECT_FALSE(Loads(bytes)) << bytes.substr(0, 20);
}

TEST(HostileXmlTold, SaysWhyADocumentIsRefused)
{
    const auto heard = [](auto load, const std::string& from) {
        const test::DebugText told(true);
        (CKXXmlDomDocument().*load)(from.c_str());
        return told.Text();
    };
    const auto text = &CKXXmlDomDocument::LoadXml;
    const auto file = &CKXXmlDomDocument::Load;
    const std::string empty = "; the document stays empty\n";
    EXPECT_EQ(heard(text, "<a/>"), "xml: CoInitialize was not called on this thread; there is no document\n");
    const test::Com com;
    EXPECT_EQ(heard(text, "<a>\n<b></c>\n</a></d>"), // not the last fault, which follows from the first
              "xml: a text is refused at line 2: Opening and ending tag mismatch: b line 2 and c" + empty);
    EXPECT_EQ(heard(text, "<a>" + std::string(300, '<') + "</a>"),
              "xml: a text is refused at line 1: StartTag: invalid element name" + empty);
    EXPECT_EQ(heard(text, Numbered(300, "<a>")), "xml: a text is refused: it goes beyond a limit" + empty);
    EXPECT_EQ(heard(file, "C:\\none.xml"), "xml: C:\\none.xml can't be read" + empty);
    const test::TempDir dir;
    dir.Write("x.xml", "<?xml version='1.0' encoding='none'?><a/>");
    const std::string name(dir.Win("x.xml"));
    EXPECT_EQ(heard(file, name),
              "xml: " + name + " is refused: it isn't in the encoding that it declares" + empty);
}

// The parser takes so many bytes of names and no more. What was loaded with all that fit can be changed.
TEST_F(HostileXml, NamesThatLeaveNoRoomForOthers)
{
    std::string names = "<r>";
    int nNames = 0;
    for (const auto& [nLength, nMost] : {std::pair(7400U, 1024), std::pair(9U, 4096)}) {
        std::string fit;
        const auto loads = [&](int nCount) {
            std::string xml = names;
            for (int n = 0; n < nCount; ++n) {
                const std::string number = std::to_string(nNames + n);
                xml += "<n" + number + std::string(nLength - 1 - number.size(), 'x') + "/>";
            }
            if (!Loads(xml + "</r>")) return false;
            fit = std::move(xml);
            return true;
        };
        int nFits = 0;
        for (int nStep = nMost; nStep > 0; nStep /= 2)
            if (loads(nFits + nStep)) nFits += nStep;
        nNames += nFits;
        names = fit;
    }
    ASSERT_TRUE(Loads(names + "</r>"));
    CKXXmlDomElement root = Root();
    root.SetAttributeString("configuration-name", "v");
    EXPECT_EQ(root.GetAttributeString("configuration-name"), "v");
    CKXXmlDomDocument other;
    CKXXmlDomElement made = other.CreateElement("an-element-of-another-one", nullptr);
    root.AppendChild(made);
    EXPECT_TRUE(made.IsValid());
    EXPECT_EQ(root.GetChild("an-element-of-another-one").GetElementPtr(), made.GetElementPtr());
}

// The child says on its output how it went.
TEST(XmlMemory, EachAllocationMayFail)
{
    EXPECT_EQ(test::Child("XmlMemoryChild", {}).Wait(), 0);
}

} // namespace

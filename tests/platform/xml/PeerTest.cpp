// This library beside libxml2 itself.

#include "include/KXXmlDomDocument.h"
#include "internal/Wide.h"
#include "tests/platform/xml/Nodes.h"

#include <libxml/c14n.h>
#include <libxml/parserInternals.h>
#include <libxml/xpathInternals.h>

using namespace test;

namespace {

const std::u16string kNone = u"no nodes";

xmlNode* Next(xmlNode* top, xmlNode* node)
{
    if (node->type == XML_ELEMENT_NODE && node->children) return node->children;
    while (node != top && !node->next)
        node = node->parent;
    return node == top ? nullptr : node->next;
}

std::string Text(const xmlChar* text)
{
    return text ? reinterpret_cast<const char*>(text) : "";
}

std::string Describe(xmlNode* node)
{
    if (node->type == XML_NAMESPACE_DECL) return "<failed>=<failed>";
    std::string name = Text(node->name);
    if (node->type == XML_TEXT_NODE) name = "#text";
    if (node->type == XML_CDATA_SECTION_NODE) name = "#cdata-section";
    if (node->type == XML_COMMENT_NODE) name = "#comment";
    if (node->type == XML_DOCUMENT_NODE) name = "#document";
    if ((node->type == XML_ELEMENT_NODE || node->type == XML_ATTRIBUTE_NODE) && node->ns && node->ns->prefix)
        name = Text(node->ns->prefix) + ":" + name;
    xmlChar* const content = xmlNodeGetContent(node);
    const std::string text = Text(content);
    xmlFree(content);
    return name + "=" + text;
}

__attribute__((format(printf, 2, 3))) void Ignore(void*, const char*, ...)
{
}

// An empty one, so that what may stand in it counts as declared elsewhere.
xmlParserInput* Nothing(const char*, const char*, xmlParserCtxt* context)
{
    return xmlNewStringInputStream(context, BAD_CAST "");
}

// The same document as libxml2 itself reads it, with entities replaced and nothing fetched.
class Peer : Fixed
{
public:
    explicit Peer(const std::string& bytes)
    {
        xmlSetExternalEntityLoader(Nothing);
        xmlSetGenericErrorFunc(nullptr, Ignore);
        m_doc = xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                              XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    }
    ~Peer() { xmlFreeDoc(m_doc); }

    // Whether it is accepted.
    explicit operator bool() const { return m_doc != nullptr; }
    // The canonical form; where there is none (a namespace's name is relative) the plain one.
    std::string Canonical()
    {
        xmlNode* const top = xmlDocGetRootElement(m_doc);
        for (xmlNode* node = top; node;) {
            xmlNode* const next = Next(top, node);
            if (node->type == XML_ENTITY_REF_NODE) { // has no canonical form
                xmlFreeNode(xmlReplaceNode(node, xmlNewDocPI(m_doc, BAD_CAST "reference", node->name)));
            }
            node = next;
        }
        xmlChar* text = nullptr;
        int nLength = xmlC14NDocDumpMemory(m_doc, nullptr, XML_C14N_1_0, nullptr, 1, &text);
        if (nLength < 0) xmlDocDumpMemoryEnc(m_doc, &text, &nLength, "UTF-8");
        std::string form(reinterpret_cast<char*>(text), static_cast<std::size_t>(std::max(nLength, 0)));
        xmlFree(text);
        return form;
    }
    // Elements without a prefix are then in no namespace.
    void ForgetDefaultNamespaces()
    {
        xmlNode* const top = xmlDocGetRootElement(m_doc);
        for (xmlNode* node = top; node; node = Next(top, node))
            if (node->type == XML_ELEMENT_NODE && node->ns && !node->ns->prefix) node->ns = nullptr;
    }
    // The result of `Selected` below for the document's element.
    std::u16string Selected(const std::string& pattern) const
    {
        xmlXPathContext* const context = xmlXPathNewContext(m_doc);
        xmlNode* const top = xmlDocGetRootElement(m_doc);
        for (xmlNode* node = top; node; node = Next(top, node))
            for (xmlNs* ns = node->type == XML_ELEMENT_NODE ? node->nsDef : nullptr; ns; ns = ns->next)
                if (ns->prefix && !xmlXPathNsLookup(context, ns->prefix))
                    xmlXPathRegisterNs(context, ns->prefix, ns->href);
        context->node = top;
        xmlXPathObject* const result = xmlXPathEvalExpression(BAD_CAST pattern.c_str(), context);
        const bool bNodes = result && result->type == XPATH_NODESET;
        std::string all;
        for (int n = 0; bNodes && result->nodesetval && n < result->nodesetval->nodeNr; ++n)
            all += Describe(result->nodesetval->nodeTab[n]) + "\n";
        xmlXPathFreeObject(result);
        xmlXPathFreeContext(context);
        return bNodes ? kx::Widen(CP_UTF8, all) : kNone;
    }

private:
    xmlDoc* m_doc;
};

// Tells what a pattern selects from an element: name and text of each node, or that it is no pattern or has
// another result.
std::u16string Selected(IXMLDOMElement* pElement, const std::string& pattern)
{
    Out<IXMLDOMNodeList> list;
    if (FAILED(pElement->selectNodes(Arg(kx::Widen(CP_UTF8, pattern)), &list))) return kNone;
    std::u16string all;
    long nLength = 0;
    list->get_length(&nLength);
    for (long n = 0; n < nLength; ++n) {
        Out<IXMLDOMNode> node;
        list->item(n, &node);
        all += Get(node, &IXMLDOMNode::get_nodeName) + u"=" + Get(node, &IXMLDOMNode::get_text) + u"\n";
    }
    return all;
}

class Chance
{
public:
    explicit Chance(unsigned nSeed) : m_random(nSeed) {}

    std::string Element(int nDepth)
    {
        const std::string name = Of({"a", "b", "c", "p:a", "p:b"});
        std::string xml = "<" + name;
        if (Odds(3)) xml += " xmlns:p='" + Of({"u", "v"}) + "'";
        if (Odds(5)) xml += " xmlns='u'";
        if (Odds(2)) xml += " x='" + Of({"1", "2", "t"}) + "'";
        if (Odds(3)) xml += " p:y='" + Of({"1", "2"}) + "'";
        xml += ">";
        for (int n = 0; nDepth > 0 && n < static_cast<int>(m_random() % 5); ++n)
            xml +=
                Odds(3) ? Of({"t", "1", "<!--c-->", "<?p i?>", "<![CDATA[t]]>", " "}) : Element(nDepth - 1);
        return xml + "</" + name + ">";
    }
    std::string Path(int nDepth)
    {
        std::string path = Of({"", "", "/", "//", "./"});
        const int nSteps = 1 + static_cast<int>(m_random() % 4);
        for (int n = 0; n < nSteps; ++n) {
            if (n > 0) path += Of({"/", "/", "//"});
            path += Step(nDepth);
        }
        return Odds(8) && nDepth > 0 ? path + " | " + Path(nDepth - 1) : path;
    }

private:
    bool Odds(unsigned nOneIn) { return m_random() % nOneIn == 0; }
    std::string Of(std::initializer_list<const char*> values)
    {
        return *(values.begin() + m_random() % values.size());
    }
    std::string Step(int nDepth)
    {
        if (Odds(5)) return Of({".", "..", "..", "@x", "@*", "text()", "comment()"});
        std::string step = Odds(2) ? ""
                                   : Of({"child", "descendant", "descendant-or-self", "parent", "ancestor",
                                         "ancestor-or-self", "following", "preceding", "following-sibling",
                                         "preceding-sibling", "self", "attribute"}) +
                                         "::";
        step += Of({"a", "b", "c", "p:a", "p:*", "*", "*", "node()", "x"});
        if (nDepth > 0 && Odds(3)) step += "[" + Predicate(nDepth - 1) + "]";
        return step;
    }
    std::string Predicate(int nDepth)
    {
        const auto nKind = m_random() % 7;
        if (nKind == 0) return Of({"1", "2", "last()", "position()<3", "position()=last()"});
        if (nKind == 1) return Path(nDepth);
        if (nKind == 2) return "count(" + Path(nDepth) + ")" + Of({"=", ">", "<"}) + Of({"0", "1", "2"});
        if (nKind == 3) return "not(" + Path(nDepth) + ")";
        if (nKind == 4) return "@x" + Of({"=", "!=", ">"}) + Of({"1", "'t'", "@p:y"});
        if (nKind == 6) return Path(nDepth) + Of({" = ", " and ", " or "}) + Path(nDepth);
        return Of({"contains(.,'t')", "string-length()>2", "name()='p:a'", "starts-with(name(),'p')",
                   "namespace-uri()='v'", "local-name()='b'", "normalize-space()=''", "sum(@x)>0"});
    }

    std::mt19937 m_random;
};

// Random patterns on random trees.
TEST(XmlPeer, SelectsTheSame)
{
    const Com com;
    const CodePage page(65001);
    int nFound = 0;
    for (unsigned nSeed = 0; nSeed < 150; ++nSeed) {
        Chance chance(nSeed);
        const std::string xml = "<r xmlns:p='u'>" + chance.Element(4) + chance.Element(4) + "</r>";
        CKXXmlDomDocument doc;
        ASSERT_TRUE(doc.LoadXml(xml.c_str()));
        Peer peer(xml);
        ASSERT_TRUE(peer);
        peer.ForgetDefaultNamespaces();
        for (int n = 0; n < 40; ++n) {
            const std::string pattern = chance.Path(2);
            // This library alone tells the default namespace.
            if (xml.find("xmlns='") != xml.npos && pattern.find("namespace-uri") != pattern.npos) continue;
            const std::u16string found = Selected(doc.GetDocumentElement().GetElementPtr(), pattern);
            ASSERT_EQ(found, peer.Selected(pattern)) << pattern << "\n" << xml;
            nFound += !found.empty();
        }
    }
    EXPECT_GT(nFound, 1000);
}

// Documents and patterns of strangers, where KX_CORPORA names a directory that has them: `xml`, with lists of
// those that libxml2 accepts and refuses, and `xml-xpath`. scripts/check-corpora runs these tests.
struct Corpus : testing::Test
{
    void SetUp() override
    {
        const char* const pszRoot = std::getenv("KX_CORPORA");
        if (!pszRoot) GTEST_SKIP() << "KX_CORPORA names no corpora";
        m_root = pszRoot;
    }

    std::vector<std::string> Names(const std::string& directory) const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_root + "/" + directory))
            names.push_back(entry.path().filename().string());
        return names;
    }
    std::string Read(const std::string& name) const { return ReadFile(m_root + "/" + name); }
    std::vector<std::string> Lines(const std::string& name) const
    {
        std::istringstream text(Read(name));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);)
            if (!line.empty()) lines.push_back(line);
        return lines;
    }
    bool Load(CKXXmlDomDocument& doc, const std::string& bytes) const
    {
        m_dir.Write("in.xml", bytes);
        return doc.Load(m_dir.Win("in.xml"));
    }

    std::string m_root;
    Com m_com;
    CodePage m_page{65001};
    TempDir m_dir;
};

// A document that is loaded, saved and loaded is the same, for this library and for libxml2.
TEST_F(Corpus, AcceptsWhatIsWellFormedAndSavesIt)
{
    const std::vector<std::string> refused = Lines("xml/refused.txt"), accepted = Lines("xml/accepted.txt");
    for (const std::string& name : refused) {
        CKXXmlDomDocument doc;
        EXPECT_FALSE(Load(doc, Read("xml/" + name))) << name;
    }
    for (const std::string& name : accepted) {
        CKXXmlDomDocument doc, again;
        const std::string bytes = Read("xml/" + name);
        EXPECT_TRUE(Load(doc, bytes)) << name;
        doc.Save(m_dir.Win("out.xml"));
        const std::string saved = m_dir.Read("out.xml");
        EXPECT_TRUE(Load(again, saved)) << name;
        EXPECT_STREQ(again.GetXml(), doc.GetXml()) << name;
        Peer before(bytes), after(saved);
        EXPECT_TRUE(before) << name;
        EXPECT_TRUE(after) << name;
        EXPECT_EQ(after.Canonical(), before.Canonical()) << name;
    }
    std::printf("%zu accepted and loaded again, %zu refused\n", accepted.size(), refused.size());
}

TEST_F(Corpus, SelectsAsLibxml2)
{
    int nPatterns = 0;
    for (const std::string& name : Names("xml-xpath/docs")) {
        const std::string bytes = Read("xml-xpath/docs/" + name);
        CKXXmlDomDocument doc;
        ASSERT_TRUE(Load(doc, bytes)) << name;
        Peer peer(bytes);
        ASSERT_TRUE(peer) << name;
        peer.ForgetDefaultNamespaces();
        const auto compare = [&](const std::string& patterns) {
            for (const std::string& pattern : Lines("xml-xpath/" + patterns)) {
                EXPECT_EQ(Selected(doc.GetDocumentElement().GetElementPtr(), pattern), peer.Selected(pattern))
                    << name << ": " << pattern;
                ++nPatterns;
            }
        };
        for (const std::string& file : Names("xml-xpath/expr"))
            compare("expr/" + file);
        for (const std::string& file : Names("xml-xpath/tests"))
            if (file.starts_with(name)) compare("tests/" + file);
    }
    std::printf("%d patterns\n", nPatterns);
}

} // namespace

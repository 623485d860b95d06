// Documents and patterns of strangers, where KX_CORPORA names a directory that has them: `xml`, with lists of
// those that libxml2 accepts and refuses, and `xml-xpath`. scripts/check-corpora runs these tests.

#include "include/KXXmlDomDocument.h"

#include "include/platform/CodePage.h"
#include "tests/support/Com.h"
#include "tests/support/Host.h"
#include "tests/support/TempDir.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <libxml/c14n.h>
#include <libxml/parser.h>
#include <libxml/xpathInternals.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr const char* kNone = "no nodes";

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
    if (node->type == XML_NAMESPACE_DECL) return "?";
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

std::string Utf8(BSTR bstr)
{
    const int nUnits = static_cast<int>(SysStringLen(bstr));
    std::string text(static_cast<std::size_t>(nUnits) * 3, '\0');
    const int nBytes = nUnits == 0 ? 0
                                   : WideCharToMultiByte(CP_UTF8, 0, bstr, nUnits, text.data(),
                                                         static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(nBytes));
    SysFreeString(bstr);
    return text;
}

std::string Describe(IXMLDOMNode* pNode)
{
    BSTR name = nullptr;
    BSTR text = nullptr;
    if (pNode->get_nodeName(&name) != S_OK || pNode->get_text(&text) != S_OK) return "?";
    return Utf8(name) + "=" + Utf8(text);
}

__attribute__((format(printf, 2, 3))) void Ignore(void*, const char*, ...)
{
}

xmlParserInput* Nothing(const char*, const char*, xmlParserCtxt*)
{
    return nullptr;
}

// The same document as libxml2 itself reads it, with entities replaced and nothing fetched.
class Peer
{
public:
    explicit Peer(const std::string& bytes);
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    ~Peer();

    // Whether it is accepted.
    explicit operator bool() const { return m_doc != nullptr; }
    // The canonical form; where there is none (a namespace's name is relative) the plain one.
    std::string Canonical();
    // Elements without a prefix are then in no namespace.
    void ForgetDefaultNamespaces();
    // What `Selected` gives for the document's element.
    std::string Selected(const std::string& pattern) const;

private:
    xmlDoc* m_doc;
};

Peer::Peer(const std::string& bytes)
{
    xmlSetExternalEntityLoader(Nothing);
    xmlSetGenericErrorFunc(nullptr, Ignore);
    m_doc = xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                          XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
}

Peer::~Peer()
{
    xmlFreeDoc(m_doc);
}

std::string Peer::Canonical()
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

void Peer::ForgetDefaultNamespaces()
{
    xmlNode* const top = xmlDocGetRootElement(m_doc);
    for (xmlNode* node = top; node; node = Next(top, node))
        if (node->type == XML_ELEMENT_NODE && node->ns && !node->ns->prefix) node->ns = nullptr;
}

std::string Peer::Selected(const std::string& pattern) const
{
    xmlXPathContext* const context = xmlXPathNewContext(m_doc);
    xmlNode* const top = xmlDocGetRootElement(m_doc);
    for (xmlNode* node = top; node; node = Next(top, node))
        for (xmlNs* ns = node->type == XML_ELEMENT_NODE ? node->nsDef : nullptr; ns; ns = ns->next)
            if (ns->prefix && !xmlXPathNsLookup(context, ns->prefix))
                xmlXPathRegisterNs(context, ns->prefix, ns->href);
    context->node = top;
    xmlXPathObject* const result = xmlXPathEvalExpression(BAD_CAST pattern.c_str(), context);
    std::string all = result && result->type == XPATH_NODESET ? "" : kNone;
    for (int n = 0; all != kNone && result->nodesetval && n < result->nodesetval->nodeNr; ++n)
        all += Describe(result->nodesetval->nodeTab[n]) + "\n";
    xmlXPathFreeObject(result);
    xmlXPathFreeContext(context);
    return all;
}

// Tells what a pattern selects from an element: name and text of each node, or that it is no pattern or has
// another result.
std::string Selected(IXMLDOMElement* pElement, const std::string& pattern)
{
    std::u16string wide(pattern.size(), u'\0');
    wide.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, pattern.data(),
                                                             static_cast<int>(pattern.size()), wide.data(),
                                                             static_cast<int>(wide.size()))));
    const BSTR bstr = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    IXMLDOMNodeList* pList = nullptr;
    const HRESULT hr = pElement->selectNodes(bstr, &pList);
    SysFreeString(bstr);
    if (FAILED(hr)) return kNone;
    std::string all;
    long nLength = 0;
    pList->get_length(&nLength);
    for (long n = 0; n < nLength; ++n) {
        IXMLDOMNode* pNode = nullptr;
        pList->item(n, &pNode);
        all += Describe(pNode) + "\n";
        pNode->Release();
    }
    pList->Release();
    return all;
}

class Corpus : public testing::Test
{
protected:
    void SetUp() override
    {
        const char* const pszRoot = std::getenv("KX_CORPORA");
        if (!pszRoot) GTEST_SKIP() << "KX_CORPORA names no corpora";
        m_root = pszRoot;
    }

    std::string Read(const std::string& name) const { return test::ReadFile(m_root + "/" + name); }
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

    // What is loaded, saved and loaded is the same, for this library and for libxml2.
    void ExpectSame(CKXXmlDomDocument& doc, const std::string& bytes, const std::string& what)
    {
        doc.Save(m_dir.Win("out.xml"));
        const std::string saved = m_dir.Read("out.xml");
        CKXXmlDomDocument again;
        ASSERT_TRUE(Load(again, saved)) << what;
        EXPECT_TRUE(again.GetXml() == doc.GetXml()) << what;
        Peer before(bytes);
        Peer after(saved);
        EXPECT_TRUE(!before || (after && after.Canonical() == before.Canonical())) << what;
        ++m_nRounds;
    }

    std::string m_root;
    test::Com m_com;
    test::CodePage m_page{65001};
    test::TempDir m_dir;
    int m_nRounds = 0;
};

TEST_F(Corpus, AcceptsWhatIsWellFormedAndSavesIt)
{
    int nRefused = 0;
    for (const std::string& name : Lines("xml/refused.txt")) {
        CKXXmlDomDocument doc;
        EXPECT_FALSE(Load(doc, Read("xml/" + name))) << name;
        ++nRefused;
    }
    for (const std::string& name : Lines("xml/accepted.txt")) {
        CKXXmlDomDocument doc;
        const std::string bytes = Read("xml/" + name);
        if (Load(doc, bytes))
            ExpectSame(doc, bytes, name);
        else
            ADD_FAILURE() << name << " is refused";
    }
    std::printf("%d accepted and loaded again, %d refused\n", m_nRounds, nRefused);
}

TEST_F(Corpus, SelectsAsLibxml2)
{
    int nPatterns = 0;
    std::vector<std::string> general;
    for (const auto& entry : std::filesystem::directory_iterator(m_root + "/xml-xpath/expr"))
        for (const std::string& line : Lines("xml-xpath/expr/" + entry.path().filename().string()))
            general.push_back(line);
    for (const auto& entry : std::filesystem::directory_iterator(m_root + "/xml-xpath/docs")) {
        const std::string name = entry.path().filename().string();
        const std::string bytes = Read("xml-xpath/docs/" + name);
        std::vector<std::string> patterns = general;
        for (const auto& tests : std::filesystem::directory_iterator(m_root + "/xml-xpath/tests")) {
            const std::string file = tests.path().filename().string();
            if (!file.starts_with(name)) continue;
            for (const std::string& line : Lines("xml-xpath/tests/" + file))
                patterns.push_back(line);
        }
        CKXXmlDomDocument doc;
        ASSERT_TRUE(Load(doc, bytes)) << name;
        Peer peer(bytes);
        ASSERT_TRUE(peer) << name;
        peer.ForgetDefaultNamespaces();
        for (const std::string& pattern : patterns) {
            EXPECT_EQ(Selected(doc.GetDocumentElement().GetElementPtr(), pattern), peer.Selected(pattern))
                << name << ": " << pattern;
            ++nPatterns;
        }
    }
    std::printf("%d patterns\n", nPatterns);
}

} // namespace

#include "tests/platform/xml/Peer.h"

#include <libxml/c14n.h>
#include <libxml/parser.h>
#include <libxml/xpathInternals.h>

namespace test {

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

} // namespace

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

} // namespace test

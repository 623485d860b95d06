#include "tests/platform/xml/Peer.h"

#include "internal/Wide.h"

#include <libxml/c14n.h>
#include <libxml/parser.h>
#include <libxml/xpathInternals.h>

namespace test {

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

std::u16string Peer::Selected(const std::string& pattern) const
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

} // namespace test

#include "platform/xml/NodeObject.h"

#include "include/platform/Xml.h"
#include "platform/xml/Names.h"
#include "platform/xml/Tree.h"

#include <libxml/valid.h>
#include <new>

namespace kx::xml {

namespace {

xmlAttr* Find(const xmlNode* element, const std::string& name, int& nCount)
{
    nCount = 0;
    for (xmlAttr* attribute = element->properties; attribute; attribute = attribute->next, ++nCount)
        if (IsCalled(attribute->ns, attribute->name, name)) return attribute;
    return nullptr;
}

std::string ValueOf(const xmlAttr* attribute)
{
    const xmlNode* const text = attribute->children;
    if (!text) return {};
    if (text->type == XML_TEXT_NODE && !text->next) return std::string(ViewOf(text->content));
    const XmlText joined(xmlNodeListGetString(attribute->doc, text, 1));
    if (!joined) throw std::bad_alloc();
    return std::string(ViewOf(joined.get()));
}

HRESULT Declare(xmlNode* element, const std::string& prefix, const std::string& uri)
{
    if (prefix == "xml" || prefix == "xmlns" || (uri.empty() && !prefix.empty())) return E_INVALIDARG;
    if (xmlNs* const declared = FindDeclaration(element, prefix)) {
        xmlChar* const href = xmlStrdup(ToXml(uri.c_str()));
        if (!href) return E_OUTOFMEMORY;
        xmlFree(const_cast<xmlChar*>(declared->href));
        declared->href = href;
        return S_OK;
    }
    if (!(Shape::Above(element->parent) + Shape::Below(element) + Shape{0, 1}).Fits()) return E_INVALIDARG;
    const xmlChar* const name = prefix.empty() ? nullptr : ToXml(prefix.c_str());
    const xmlNs* const ns = xmlNewNs(element, ToXml(uri.c_str()), name);
    if (!ns) return E_OUTOFMEMORY;
    RenewPrefix(element, ns->prefix);
    ResolvePrefixes(element);
    return S_OK;
}

HRESULT Add(xmlNode* element, const std::string& name, const std::string& value)
{
    const QualifiedName parts(name);
    xmlNs* const ns =
        parts.prefix.empty() ? nullptr : xmlSearchNs(element->doc, element, ToXml(parts.prefix.c_str()));
    const std::string& local = ns ? parts.local : name;
    // Without a value at first: one that there is no memory for would be left out without a word, and one
    // that is an identity be noted in a table, in which it would be left behind.
    xmlAttr* const attribute = xmlNewNsProp(element, ns, ToXml(local.c_str()), nullptr);
    if (!attribute) return E_OUTOFMEMORY;
    const HRESULT hr = attribute->name ? SetValue(attribute, value) : E_OUTOFMEMORY;
    if (FAILED(hr))
        xmlRemoveProp(attribute);
    else if (xmlIsID(element->doc, element, attribute) == 1)
        attribute->atype = XML_ATTRIBUTE_ID;
    return hr;
}

} // namespace

std::optional<std::string> GetAttribute(const xmlNode* element, const std::string& name)
{
    if (const auto prefix = DeclaredPrefix(name)) {
        const xmlNs* const ns = FindDeclaration(element, *prefix);
        return ns ? std::optional<std::string>(ViewOf(ns->href)) : std::nullopt;
    }
    int nCount = 0;
    const xmlAttr* const attribute = Find(element, name, nCount);
    return attribute ? std::optional(ValueOf(attribute)) : std::nullopt;
}

HRESULT SetAttribute(xmlNode* element, const std::string& name, const std::string& value)
{
    if (!IsName(name) || value.size() > XML_MAX_ATTRIBUTE) return E_INVALIDARG;
    if (const auto prefix = DeclaredPrefix(name)) return Declare(element, *prefix, value);
    int nCount = 0;
    if (xmlAttr* const attribute = Find(element, name, nCount)) return SetValue(attribute, value);
    if (nCount >= XML_MAX_ATTRIBUTES || xmlDictSize(element->doc->dict) >= XML_MAX_NAMES) return E_INVALIDARG;
    return Add(element, name, value);
}

HRESULT SetValue(xmlAttr* attribute, const std::string& value)
{
    if (value.size() > XML_MAX_ATTRIBUTE) return E_INVALIDARG;
    NodePtr text(xmlNewDocText(attribute->doc, ToXml(value.c_str())));
    if (!text || !text->content) return E_OUTOFMEMORY;
    xmlFreeNodeList(attribute->children); // its own, whatever others are in the same namespace by now
    text->parent = reinterpret_cast<xmlNode*>(attribute);
    attribute->children = attribute->last = text.release();
    return S_OK;
}

} // namespace kx::xml

#include "platform/xml/libxml/NodeObject.h"

#include <libxml/valid.h>
#include <utility>

namespace kx::xml::libxml {

namespace {

xmlAttr* Find(const xmlNode* element, const std::string& name, int& nCount)
{
    nCount = 0;
    for (xmlAttr* attribute = element->properties; attribute; attribute = attribute->next, ++nCount)
        if (NameOf(reinterpret_cast<xmlNode*>(attribute)) == name) return attribute;
    return nullptr;
}

// The prefix, maybe empty, that an attribute of this name declares; nothing for other attributes.
std::optional<std::string> DeclaredPrefix(const std::string& name)
{
    if (name == "xmlns") return std::string();
    return name.starts_with("xmlns:") ? std::optional(name.substr(6)) : std::nullopt;
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
    const xmlChar* const name = prefix.empty() ? nullptr : ToXml(prefix.c_str());
    Declarations declared(xmlNewNs(nullptr, ToXml(uri.c_str()), name));
    if (!declared || !declared->href || (name && !declared->prefix)) return E_OUTOFMEMORY;
    if (!FitsAt(element->parent, element, declared.get())) return E_INVALIDARG;
    AddDeclarations(element, std::move(declared));
    return S_OK;
}

HRESULT Add(xmlNode* element, const std::string& name, const std::string& value)
{
    const std::size_t colon = name.find(':');
    xmlNs* const ns = colon == name.npos
                          ? nullptr
                          : xmlSearchNs(element->doc, element, ToXml(name.substr(0, colon).c_str()));
    // Without a value at first: one that there is no memory for would be left out without a word, and one
    // that is an identity be noted in a table, in which it would be left behind.
    xmlAttr* const attribute = xmlNewNsProp(element, ns, ToXml(name.c_str()) + (ns ? colon + 1 : 0), nullptr);
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
    if (!attribute) return std::nullopt;
    return std::string(attribute->children ? ViewOf(attribute->children->content) : "");
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

} // namespace kx::xml::libxml

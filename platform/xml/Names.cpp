#include "platform/xml/Names.h"

#include "platform/xml/Tree.h"

namespace kx::xml {

namespace {

bool UsesNamespaces(xmlNode* branch) noexcept
{
    for (xmlNode* node = branch; node; node = NextBelow(branch, node)) {
        if (node->type != XML_ELEMENT_NODE) continue;
        if (node->ns) return true;
        for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next)
            if (attribute->ns) return true;
    }
    return false;
}

// From the top down: what is above the node has been renewed.
template <class Node>
void Renew(xmlNode* element, Node& node, const xmlChar* prefix) noexcept
{
    if (!node.ns || !xmlStrEqual(node.ns->prefix, prefix)) return;
    if (xmlNs* const ns = xmlSearchNs(element->doc, element, prefix)) node.ns = ns;
}

void ResolvePrefix(xmlNode* node) noexcept
{
    const xmlChar* const colon = xmlStrchr(node->name, ':');
    if (!colon) return;
    const XmlText prefix(xmlStrndup(node->name, static_cast<int>(colon - node->name)));
    xmlNs* const ns = prefix ? xmlSearchNs(node->doc, node, prefix.get()) : nullptr;
    // In the dictionary first: a lack of memory would leave the node without a name.
    const xmlChar* const local = ns ? xmlDictLookup(node->doc->dict, colon + 1, -1) : nullptr;
    if (!local) return;
    xmlNodeSetName(node, local);
    node->ns = ns;
}

} // namespace

bool IsName(const std::string& name) noexcept
{
    constexpr std::size_t kLongest = 10000; // the parser takes some more
    return name.size() <= kLongest && name.find('\0') == name.npos &&
           xmlValidateQName(ToXml(name.c_str()), 0) == 0;
}

bool IsCalled(const xmlNs* ns, const xmlChar* local, std::string_view name) noexcept
{
    if (ns && ns->prefix) {
        const std::string_view prefix = ViewOf(ns->prefix);
        if (!name.starts_with(prefix) || name.substr(prefix.size(), 1) != ":") return false;
        name.remove_prefix(prefix.size() + 1);
    }
    return ViewOf(local) == name;
}

std::string NameOf(const xmlNode* node)
{
    switch (node->type) {
    case XML_ELEMENT_NODE:
    case XML_ATTRIBUTE_NODE: {
        const xmlNs* const ns = node->ns;
        const std::string local(ViewOf(node->name));
        return ns && ns->prefix ? std::string(ViewOf(ns->prefix)) + ":" + local : local;
    }
    case XML_TEXT_NODE:
        return "#text";
    case XML_CDATA_SECTION_NODE:
        return "#cdata-section";
    case XML_COMMENT_NODE:
        return "#comment";
    case XML_DOCUMENT_NODE:
        return "#document";
    default:
        return std::string(ViewOf(node->name));
    }
}

void RenewPrefix(xmlNode* branch, const xmlChar* prefix) noexcept
{
    for (xmlNode* node = branch; node; node = NextBelow(branch, node)) {
        if (node->type != XML_ELEMENT_NODE) continue;
        Renew(node, *node, prefix);
        for (xmlAttr* attribute = node->properties; attribute; attribute = attribute->next)
            Renew(node, *attribute, prefix);
    }
}

void KeepNamespaces(xmlNode* branch) noexcept
{
    if (IsField(branch) || !UsesNamespaces(branch)) return;
    const Complaints quiet;
    xmlDOMWrapReconcileNamespaces(nullptr, branch, 0);
}

void ResolvePrefixes(xmlNode* branch) noexcept
{
    if (IsField(branch)) return ResolvePrefix(branch);
    for (xmlNode* node = branch; node; node = NextBelow(branch, node))
        if (node->type == XML_ELEMENT_NODE && !node->ns) ResolvePrefix(node);
}

QualifiedName::QualifiedName(const std::string& name)
{
    const std::size_t colon = name.find(':');
    if (colon != name.npos) prefix = name.substr(0, colon);
    local = name.substr(colon == name.npos ? 0 : colon + 1);
}

std::optional<std::string> DeclaredPrefix(const std::string& attribute)
{
    constexpr std::string_view kDeclare = "xmlns";
    if (attribute == kDeclare) return std::string();
    const QualifiedName name(attribute);
    return name.prefix == kDeclare ? std::optional(name.local) : std::nullopt;
}

xmlNs* FindDeclaration(const xmlNode* element, const std::string& prefix) noexcept
{
    xmlNs* ns = element->nsDef;
    while (ns && ViewOf(ns->prefix) != prefix)
        ns = ns->next;
    return ns;
}

} // namespace kx::xml

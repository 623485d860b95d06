#include "platform/xml/Namespaces.h"

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

} // namespace

void KeepNamespaces(xmlNode* branch)
{
    if (!UsesNamespaces(branch)) return;
    const Hush hush;
    xmlDOMWrapReconcileNamespaces(nullptr, branch, 0);
}

void ResolvePrefixes(xmlNode* branch)
{
    for (xmlNode* node = branch; node; node = NextBelow(branch, node)) {
        if (node->type != XML_ELEMENT_NODE || node->ns || ViewOf(node->name).find(':') == std::string::npos)
            continue;
        const QualifiedName name(std::string(ViewOf(node->name)));
        xmlNs* const ns = xmlSearchNs(node->doc, node, ToXml(name.prefix.c_str()));
        if (!ns) continue;
        xmlNodeSetName(node, ToXml(name.local.c_str()));
        node->ns = ns;
    }
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

#include "platform/xml/libxml/Tree.h"

namespace kx::xml::libxml {

namespace {

// Calls it for each element and attribute, with the element that it is or belongs to.
template <class Use>
void ForEachName(xmlNode* branch, Use use)
{
    ForEachNode(branch, [&](xmlNode* node) {
        if (node->type == XML_ELEMENT_NODE || node->type == XML_ATTRIBUTE_NODE)
            use(node->type == XML_ELEMENT_NODE ? node : node->parent, node->ns);
    });
}

// The namespace that a prefix stands for at a place, as told below `end`; null if nothing there declares it.
xmlNs* FindNamespace(const xmlNode* place, std::string_view prefix, const xmlNode* end = nullptr) noexcept
{
    if (place && prefix == "xml") return place->doc->oldNs; // each document's own
    for (; place && place != end && place->type == XML_ELEMENT_NODE; place = place->parent)
        if (xmlNs* const ns = FindDeclaration(place, prefix)) return ns;
    return nullptr;
}

// An element that was named with a prefix before anything declared it.
void ResolvePrefix(xmlNode* element) noexcept
{
    const xmlChar* const colon = element->ns ? nullptr : xmlStrchr(element->name, ':');
    if (!colon) return;
    const auto nPrefix = static_cast<std::size_t>(colon - element->name);
    xmlNs* const ns = FindNamespace(element, ViewOf(element->name).substr(0, nPrefix));
    // In the dictionary first: a lack of memory would leave the node without a name.
    const xmlChar* const local = ns ? xmlDictLookup(element->doc->dict, colon + 1, -1) : nullptr;
    if (!local) return;
    xmlNodeSetName(element, local);
    element->ns = ns;
}

} // namespace

bool IsName(const std::string& name) noexcept
{
    constexpr std::size_t kLongest = 10000; // the parser takes some more
    return name.size() <= kLongest && name.find('\0') == name.npos &&
           xmlValidateQName(ToXml(name.c_str()), 0) == 0;
}

std::string NameOf(const xmlNode* node)
{
    constexpr std::pair<xmlElementType, const char*> kNameless[] = {
        {XML_TEXT_NODE, "#text"},
        {XML_CDATA_SECTION_NODE, "#cdata-section"},
        {XML_COMMENT_NODE, "#comment"},
        {XML_DOCUMENT_NODE, "#document"}};
    for (const auto& [type, pszName] : kNameless)
        if (node->type == type) return pszName;
    const bool bPrefix =
        (node->type == XML_ELEMENT_NODE || node->type == XML_ATTRIBUTE_NODE) && node->ns && node->ns->prefix;
    const std::string local(ViewOf(node->name));
    return bPrefix ? std::string(ViewOf(node->ns->prefix)) + ":" + local : local;
}

xmlNs* FindDeclaration(const xmlNode* element, std::string_view prefix) noexcept
{
    xmlNs* ns = element->nsDef;
    while (ns && ViewOf(ns->prefix) != prefix)
        ns = ns->next;
    return ns;
}

Declarations NeededAt(xmlNode* branch, const xmlNode* place)
{
    Declarations needed;
    ForEachName(branch, [&](const xmlNode* element, const xmlNs* ns) {
        if (!ns || FindNamespace(element, ViewOf(ns->prefix), branch->parent)) return;
        const xmlNs* const there = FindNamespace(place, ViewOf(ns->prefix));
        if (there && xmlStrEqual(there->href, ns->href)) return;
        for (const xmlNs* other = needed.get(); other; other = other->next)
            if (xmlStrEqual(other->prefix, ns->prefix)) return;
        xmlNs* const declaration = xmlNewNs(nullptr, ns->href, ns->prefix);
        if (!declaration) throw std::bad_alloc();
        declaration->next = needed.release();
        needed.reset(declaration);
        if (!declaration->href || !declaration->prefix) throw std::bad_alloc();
    });
    return needed;
}

void AddDeclarations(xmlNode* branch, Declarations added) noexcept
{
    if (added) {
        xmlNs** end = &branch->nsDef;
        while (*end)
            end = &(*end)->next;
        *end = added.release();
    }
    ForEachName(branch, [](const xmlNode* element, xmlNs*& ns) {
        xmlNs* const now = ns ? FindNamespace(element, ViewOf(ns->prefix)) : nullptr;
        if (now) ns = now;
    });
    ForEachElement(branch, ResolvePrefix);
}

} // namespace kx::xml::libxml

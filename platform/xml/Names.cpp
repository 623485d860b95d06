#include "platform/xml/Names.h"

namespace kx::xml {

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

} // namespace kx::xml

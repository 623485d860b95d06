#include "platform/xml/ChildName.h"

#include "platform/xml/Names.h"

namespace kx::xml {

ChildName::ChildName(const xmlNode* parent, const std::string& name) : m_name(name)
{
    QualifiedName parts(name);
    if (parts.prefix.empty() || parent->type != XML_ELEMENT_NODE) return;
    m_ns = xmlSearchNs(parent->doc, const_cast<xmlNode*>(parent), ToXml(parts.prefix.c_str()));
    m_local = std::move(parts.local);
}

bool ChildName::Matches(const xmlNode* element) const noexcept
{
    if (!m_ns) return IsCalled(element->ns, element->name, m_name);
    return element->ns && ViewOf(element->name) == m_local && xmlStrEqual(element->ns->href, m_ns->href);
}

xmlNode* ChildName::FirstFrom(xmlNode* node) const noexcept
{
    while (node && (node->type != XML_ELEMENT_NODE || !Matches(node)))
        node = node->next;
    return node;
}

} // namespace kx::xml

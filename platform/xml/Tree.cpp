#include "platform/xml/Tree.h"

#include "include/platform/Xml.h"

#include <algorithm>
#include <cstring>

namespace kx::xml {

namespace {

constexpr int kFew = 64; // nodes that are looked through faster than an index is made

// Of one node alone.
Shape Own(const xmlNode* node) noexcept
{
    if (node->type != XML_ELEMENT_NODE) return {};
    Shape own{1, 0};
    for (const xmlNs* ns = node->nsDef; ns; ns = ns->next)
        ++own.nNamespaces;
    return own;
}

} // namespace

bool IsNamed(const xmlNode* node, std::string_view name) noexcept
{
    if (node->type != XML_ELEMENT_NODE || node->ns) return false;
    const auto* const own = reinterpret_cast<const char*>(node->name);
    return std::strncmp(own, name.data(), name.size()) == 0 && own[name.size()] == '\0';
}

xmlNode* ChildIndex::Find(const xmlNode* parent, std::string_view name)
{
    int nSeen = 0;
    for (xmlNode* node = parent->children; node; node = node->next) {
        if (IsNamed(node, name)) return node;
        if (++nSeen == kFew) break;
    }
    if (nSeen < kFew) return nullptr;
    if (m_parent != parent) Build(parent);
    const auto found = m_first.find(name);
    return found == m_first.end() ? nullptr : found->second;
}

void ChildIndex::Build(const xmlNode* parent)
{
    Forget();
    for (xmlNode* node = parent->children; node; node = node->next)
        if (node->type == XML_ELEMENT_NODE && !node->ns) m_first.try_emplace(ViewOf(node->name), node);
    m_parent = parent;
}

void ChildIndex::Added(const xmlNode* parent, xmlNode* child)
{
    if (m_parent != parent) return;
    try {
        if (!child->ns) m_first.try_emplace(ViewOf(child->name), child);
    } catch (const std::bad_alloc&) {
        Forget();
    }
}

void ChildIndex::Forget() noexcept
{
    m_parent = nullptr;
    m_first.clear();
}

Ref<Tree> Tree::Make(DocPtr doc, std::string subset)
{
    if (!doc) {
        StartLibxml();
        const Complaints quiet;
        doc.reset(xmlNewDoc(ToXml("1.0")));
        if (doc) doc->dict = xmlDictCreate(); // names repeated then cost nothing
        if (!doc || !doc->dict) throw std::bad_alloc();
    }
    return Ref<Tree>::Adopt(new Tree(std::move(doc), std::move(subset)));
}

bool Tree::HasRoomForNames(int nMore) const noexcept
{
    return xmlDictSize(m_doc->dict) + nMore <= XML_MAX_NAMES;
}

xmlXPathContext* Tree::XPath()
{
    if (!m_xpath) {
        m_xpath.reset(xmlXPathNewContext(m_doc.get()));
        if (!m_xpath) throw std::bad_alloc();
    }
    return m_xpath.get();
}

Shape Shape::Below(xmlNode* branch) noexcept
{
    if (IsField(branch)) return {1, 0};
    Shape most;
    Shape at;
    const auto leave = [&](const xmlNode* node) {
        const Shape own = Own(node);
        at = {at.nElements - own.nElements, at.nNamespaces - own.nNamespaces};
    };
    for (xmlNode* node = branch; node;) {
        at = at + Own(node);
        most = {std::max(most.nElements, at.nElements), std::max(most.nNamespaces, at.nNamespaces)};
        xmlNode* const next = NextBelow(branch, node);
        for (const xmlNode* left = node; next && left != next->parent; left = left->parent)
            leave(left);
        node = next;
    }
    return most;
}

Shape Shape::Above(const xmlNode* node) noexcept
{
    Shape all;
    for (; node && node->type == XML_ELEMENT_NODE; node = node->parent)
        all = all + Own(node);
    return all;
}

bool Shape::Fits() const noexcept
{
    return nElements <= XML_MAX_DEPTH && nNamespaces <= XML_MAX_NAMESPACES;
}

} // namespace kx::xml

#include "platform/xml/ChildIndex.h"

#include <cstring>

namespace kx::xml {

namespace {

constexpr int kFew = 64; // nodes that are looked through faster than an index is made

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

} // namespace kx::xml

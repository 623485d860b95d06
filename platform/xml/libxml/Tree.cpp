#include "platform/xml/libxml/Tree.h"

#include <climits>
#include <libxml/catalog.h>
#include <libxml/valid.h>

namespace kx::xml::libxml {

namespace {

// libxml2 makes its locks and tables at their first use, which no two threads may have at once.
void StartLibxml()
{
    [[maybe_unused]] static const int nOnce = (xmlInitParser(), xmlInitializeCatalog(), xmlInitializeDict());
}

int CountOf(const xmlNs* declared) noexcept
{
    int n = 0;
    for (; declared; declared = declared->next)
        ++n;
    return n;
}

// Whether a branch has no more than so many of them within each other.
bool Fits(const xmlNode* branch, int nElements, int nNamespaces) noexcept
{
    if (branch->type != XML_ELEMENT_NODE) return true;
    nNamespaces -= CountOf(branch->nsDef);
    if (--nElements < 0 || nNamespaces < 0) return false;
    const xmlNode* child = branch->children;
    while (child && Fits(child, nElements, nNamespaces))
        child = child->next;
    return !child;
}

} // namespace

xmlNode* ChildIndex::Find(const xmlNode* parent, std::string_view name)
{
    constexpr int kFew = 64; // nodes that are looked through faster than an index is made
    const auto search = [&](int nMost) {
        xmlNode* node = parent->children;
        for (int n = 0; node && n < nMost && !IsNamed(node, name); ++n)
            node = node->next;
        return node;
    };
    xmlNode* const early = search(kFew);
    if (!early || IsNamed(early, name)) return early;
    auto index = m_parents.find(parent);
    if (index == m_parents.end()) {
        Names names;
        for (xmlNode* node = parent->children; node; node = node->next)
            Add(names, node);
        index = m_parents.emplace(parent, std::move(names)).first;
    }
    const auto found = index->second.find(name);
    if (found == index->second.end()) return nullptr;
    xmlNode*& first = found->second.first;
    if (!first || !IsNamed(first, name)) first = search(INT_MAX);
    return first;
}

void ChildIndex::Add(Names& names, xmlNode* child)
{
    if (child->type != XML_ELEMENT_NODE || child->ns) return;
    Named& named = names[ViewOf(child->name)];
    if (named.nCount++ == 0) named.first = child;
}

void ChildIndex::Added(xmlNode* child) noexcept
{
    const auto index = m_parents.find(child->parent);
    if (index == m_parents.end()) return;
    try {
        Add(index->second, child);
    } catch (const std::bad_alloc&) {
        m_parents.erase(index);
    }
}

void ChildIndex::Removed(const xmlNode* child) noexcept
{
    const auto index = m_parents.find(child->parent);
    if (index == m_parents.end() || child->ns) return;
    const auto found = index->second.find(ViewOf(child->name));
    if (found == index->second.end()) return;
    if (found->second.first == child) found->second.first = nullptr;
    if (--found->second.nCount == 0) index->second.erase(found);
}

void ChildIndex::Forget(xmlNode* branch) noexcept
{
    if (!m_parents.empty()) ForEachElement(branch, [&](xmlNode* element) { m_parents.erase(element); });
}

Ref<Tree> Tree::Make(DocPtr doc, std::string subset)
{
    StartLibxml();
    const Complaints complaints;
    if (!doc) {
        doc.reset(xmlNewDoc(ToXml("1.0")));
        if (doc) doc->dict = xmlDictCreate(); // names repeated then cost nothing
        if (!doc || !doc->dict) throw std::bad_alloc();
    }
    // The namespace of "xml" is there before it is needed, where memory may be short.
    xmlSearchNs(doc.get(), reinterpret_cast<xmlNode*>(doc.get()), ToXml("xml"));
    complaints.ThrowIfNoMemory();
    return Ref<Tree>(new Tree(std::move(doc), std::move(subset)));
}

void ForgetIds(xmlDoc* doc) noexcept
{
    xmlFreeIDTable(static_cast<xmlIDTable*>(std::exchange(doc->ids, nullptr)));
}

bool FitsAt(const xmlNode* place, const xmlNode* branch, const xmlNs* more) noexcept
{
    int nElements = XML_MAX_DEPTH; // that are left
    int nNamespaces = XML_MAX_NAMESPACES - CountOf(more);
    for (; place && place->type == XML_ELEMENT_NODE; place = place->parent, --nElements)
        nNamespaces -= CountOf(place->nsDef);
    return Fits(branch, nElements, nNamespaces);
}

} // namespace kx::xml::libxml

#pragma once

#include "platform/LiveHandles.h"
#include "platform/xml/ChildIndex.h"
#include "platform/xml/Ref.h"

#include <libxml/xpath.h>
#include <string>

namespace kx::xml {

// One libxml2 document with all nodes that were made in it, whether they hang in it or not. Counted by the
// document object and by each node's.
class Tree
{
public:
    // With the caller's reference. The document may be null: a new, empty one. `subset` is what stood behind
    // the names in its document type declaration, up to the ">" and with it.
    static Ref<Tree> Make(DocPtr doc = nullptr, std::string subset = {});
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    void AddRef() noexcept { ++m_nRefs; }
    void Release() noexcept
    {
        if (--m_nRefs == 0) delete this;
    }

    xmlDoc* Doc() const noexcept { return m_doc.get(); }
    xmlNode* DocNode() const noexcept { return reinterpret_cast<xmlNode*>(m_doc.get()); }
    xmlNode* Root() const noexcept { return xmlDocGetRootElement(m_doc.get()); }
    const std::string& Subset() const noexcept { return m_subset; }
    ChildIndex& Children() noexcept { return m_children; }
    // Whether so many more distinct names would still be loaded again.
    bool HasRoomForNames(int nMore) const noexcept;
    // For expressions, kept for the next one. Throws std::bad_alloc.
    xmlXPathContext* XPath();

private:
    Tree(DocPtr doc, std::string subset) noexcept : m_doc(std::move(doc)), m_subset(std::move(subset)) {}
    ~Tree() = default;

    unsigned m_nRefs = 1;
    ChildIndex m_children;
    const LiveHandle m_live;
    DocPtr m_doc;
    std::string m_subset;
    std::unique_ptr<xmlXPathContext, FreeBy<xmlXPathFreeContext>> m_xpath;
};

// An element that holds a text at most and names no namespace, as most children of records: there is nothing
// in it to walk through.
inline bool IsField(const xmlNode* node) noexcept
{
    const xmlNode* const child = node->children;
    return node->type == XML_ELEMENT_NODE && !node->ns && !node->nsDef && !node->properties &&
           (!child || (child->type == XML_TEXT_NODE && !child->next));
}

// The next node in document order of those below `top`, whose attributes are not among them; null behind the
// last one.
inline xmlNode* NextBelow(const xmlNode* top, xmlNode* node) noexcept
{
    if (node->children && node->type == XML_ELEMENT_NODE) return node->children;
    while (node != top && !node->next)
        node = node->parent;
    return node == top ? nullptr : node->next;
}

// How much lies within each other along the longest way down: elements, and declarations of namespaces. What
// exceeds the limits of one document could be written but not be loaded again.
struct Shape
{
    int nElements = 0;
    int nNamespaces = 0;

    // From a branch's top down to its leaves, each at its most.
    static Shape Below(xmlNode* branch) noexcept;
    // From the document down to this node, which may be null.
    static Shape Above(const xmlNode* node) noexcept;

    bool Fits() const noexcept;
    friend Shape operator+(const Shape& a, const Shape& b) noexcept
    {
        return {a.nElements + b.nElements, a.nNamespaces + b.nNamespaces};
    }
};

} // namespace kx::xml

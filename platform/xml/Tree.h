#pragma once

#include "platform/LiveHandles.h"
#include "platform/xml/Libxml.h"
#include "platform/xml/Ref.h"

#include <libxml/xpath.h>
#include <memory>

namespace kx::xml {

using DocPtr = std::unique_ptr<xmlDoc, FreeBy<xmlFreeDoc>>;

// One libxml2 document with all nodes that were made in it, whether they hang in it or not. Counted by the
// document object and by each node's.
class Tree
{
public:
    // With the caller's reference. The document may be null: a new, empty one.
    static Ref<Tree> Make(DocPtr doc = nullptr);
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
    // For expressions, kept for the next one; null for a lack of memory.
    xmlXPathContext* XPath();

private:
    explicit Tree(DocPtr doc) noexcept : m_doc(std::move(doc)) {}
    ~Tree() = default;

    unsigned m_nRefs = 1;
    const LiveHandle m_live;
    DocPtr m_doc;
    std::unique_ptr<xmlXPathContext, FreeBy<xmlXPathFreeContext>> m_xpath;
};

// The next node in document order of those below `top`, whose attributes are not among them; null behind the
// last one.
inline xmlNode* NextBelow(const xmlNode* top, xmlNode* node) noexcept
{
    if (node->children && node->type == XML_ELEMENT_NODE) return node->children;
    while (node != top && !node->next)
        node = node->parent;
    return node == top ? nullptr : node->next;
}

} // namespace kx::xml

#pragma once

#include "platform/LiveHandles.h"
#include "platform/xml/Libxml.h"
#include "platform/xml/Ref.h"

#include <algorithm>
#include <cstdint>
#include <libxml/xpath.h>
#include <memory>
#include <new>
#include <utility>

namespace kx::xml {

using DocPtr = std::unique_ptr<xmlDoc, FreeBy<xmlFreeDoc>>;

// How far a parent's children have been looked through, from the first one on: records are read child by
// child in about their order, and then each is passed once.
struct Passed
{
    const xmlNode* parent = nullptr;
    xmlNode* last = nullptr;
    std::uint64_t names = 0; // a bit for each name among them, which others may share
    std::ptrdiff_t step = 0; // from the parent before this one, in memory
};

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
    // Memory for nodes' objects, all of one size, which come and go with every step of a walk. Those that
    // ended are kept for the next ones, but no more than there ever were at once: objects also come from
    // other trees.
    void* NewBlock(std::size_t nBytes);
    void EndBlock(void* block) noexcept;
    // An object, with its block, goes over to another tree.
    void PassObject(Tree& to) noexcept
    {
        --m_nObjects;
        to.CountObject();
    }
    Passed& LastSearch() noexcept { return m_passed; }
    // To be called before nodes come, go or move.
    void ForgetSearch() noexcept { m_passed = {}; }
    // For expressions, kept for the next one; null for a lack of memory.
    xmlXPathContext* XPath();

private:
    explicit Tree(DocPtr doc) noexcept : m_doc(std::move(doc)) {}
    ~Tree();
    void CountObject() noexcept { m_nMostObjects = std::max(m_nMostObjects, ++m_nObjects); }

    struct Block
    {
        Block* next;
    };

    unsigned m_nRefs = 1;
    Block* m_blocks = nullptr; // kept
    std::size_t m_nBlocks = 0;
    std::size_t m_nObjects = 0;
    std::size_t m_nMostObjects = 0;
    Passed m_passed;
    const LiveHandle m_live;
    DocPtr m_doc;
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

} // namespace kx::xml

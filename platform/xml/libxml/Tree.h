#pragma once

#include "include/platform/Xml.h"
#include "platform/Handles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <libxml/xpath.h>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>

namespace kx::xml::libxml {

inline const xmlChar* ToXml(const char* text) noexcept
{
    return reinterpret_cast<const xmlChar*>(text);
}
// Null counts as the empty text.
inline std::string_view ViewOf(const xmlChar* text) noexcept
{
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

template <auto free>
using FreeBy = std::integral_constant<decltype(free), free>;
using DocPtr = std::unique_ptr<xmlDoc, FreeBy<xmlFreeDoc>>;
using NodePtr = std::unique_ptr<xmlNode, FreeBy<xmlFreeNode>>;

// Takes libxml2's complaints on this thread for as long as it lives: none reaches stderr, and a lack of
// memory, which many of libxml2's calls don't report otherwise, is remembered.
class Complaints
{
public:
    Complaints() noexcept
        : m_structured(std::exchange(OfThread().structured, Take)),
          m_context(std::exchange(OfThread().context, this)),
          m_generic(std::exchange(OfThread().generic, Ignore))
    {
    }
    Complaints(const Complaints&) = delete;
    Complaints& operator=(const Complaints&) = delete;
    ~Complaints()
    {
        OfThread().structured = m_structured;
        OfThread().context = m_context;
        OfThread().generic = m_generic;
        if (m_nLast != XML_ERR_OK) xmlResetLastError(); // which keeps copies of texts
    }

    bool NoMemory() const noexcept { return m_bNoMemory; }
    // The first fault that ends a document, what follows being often its consequence alone: the beginning of
    // its text, empty for none, and its line, 0 where it has none.
    const char* Fault() const noexcept { return m_nFaultLine < 0 ? "" : m_fault.data(); }
    int FaultLine() const noexcept { return std::max(m_nFaultLine, 0); }
    void ThrowIfNoMemory() const
    {
        if (m_bNoMemory) throw std::bad_alloc();
    }

private:
    // libxml2 keeps them here; each of its own ways there asks which thread it is in.
    struct Handlers
    {
        xmlStructuredErrorFunc& structured = xmlStructuredError;
        void*& context = xmlStructuredErrorContext;
        xmlGenericErrorFunc& generic = xmlGenericError;
    };
    static Handlers& OfThread() noexcept
    {
        thread_local Handlers handlers;
        return handlers;
    }
    // Texts and attributes beyond the parser's limits are lacks of memory to it as well.
    static void Take(void* self, xmlErrorPtr error)
    {
        auto& complaints = *static_cast<Complaints*>(self);
        const std::string_view what = error->message ? error->message : "";
        const bool bLimit =
            complaints.m_nLast == XML_ERR_ATTRIBUTE_NOT_FINISHED || what.find("huge") != what.npos;
        if (error->code == XML_ERR_NO_MEMORY && !bLimit) complaints.m_bNoMemory = true;
        complaints.m_nLast = error->code;
        if (error->level != XML_ERR_FATAL || complaints.m_nFaultLine >= 0) return;
        complaints.m_nFaultLine = std::max(error->line, 0);
        complaints.m_fault[what.substr(0, what.find('\n')).copy(complaints.m_fault.data(), kMostOfFault)] =
            '\0';
    }
    __attribute__((format(printf, 2, 3))) static void Ignore(void*, const char*, ...) {}

    const xmlStructuredErrorFunc m_structured;
    void* const m_context;
    const xmlGenericErrorFunc m_generic;
    static constexpr std::size_t kMostOfFault = 199;

    std::array<char, kMostOfFault + 1> m_fault;
    int m_nFaultLine = -1;
    int m_nLast = XML_ERR_OK;
    bool m_bNoMemory = false;
};

struct Releaser
{
    void operator()(auto* object) const noexcept { object->Release(); }
};
// Holds one reference on an object with AddRef and Release.
template <class T>
using Ref = std::unique_ptr<T, Releaser>;
// A further reference, on an object or none.
template <class T>
Ref<T> Share(T* object) noexcept
{
    if (object) object->AddRef();
    return Ref<T>(object);
}

// Finds a node's children by names without a prefix. The children of a parent with many are indexed: all of
// them, read in any order, take time in proportion to their number.
class ChildIndex
{
public:
    // The first such child; null without one.
    xmlNode* Find(const xmlNode* parent, std::string_view name);
    // To be called when an element has become the last child of its parent.
    void Added(xmlNode* child) noexcept;
    // To be called before an element leaves its parent.
    void Removed(const xmlNode* child) noexcept;
    // To be called before a branch is freed, or all that is in it leaves.
    void Forget(xmlNode* branch) noexcept;

private:
    struct Named
    {
        xmlNode* first; // null where that one has left, and others are there
        int nCount;
    };
    using Names = std::unordered_map<std::string_view, Named>;

    static void Add(Names& names, xmlNode* child);

    std::unordered_map<const xmlNode*, Names> m_parents;
};

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
    bool HasRoomForNames(int nMore) const noexcept
    {
        return xmlDictSize(m_doc->dict) + nMore <= XML_MAX_NAMES;
    }
    // For expressions, kept for the next one.
    auto& XPath() noexcept { return m_xpath; }

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

// The next node in document order of those below `top`, whose attributes are not among them; null behind the
// last one.
inline xmlNode* NextBelow(const xmlNode* top, xmlNode* node) noexcept
{
    if (node->children && (node->type == XML_ELEMENT_NODE || node->type == XML_DOCUMENT_NODE))
        return node->children;
    while (node != top && !node->next)
        node = node->parent;
    return node == top ? nullptr : node->next;
}
// The document, or what a branch that hangs in none hangs by.
inline xmlNode* TopOf(xmlNode* node) noexcept
{
    while (node->parent)
        node = node->parent;
    return node;
}
// Calls it for all nodes of a branch, and for all attributes, which begin with the same fields, with their
// texts.
template <class Use>
void ForEachNode(xmlNode* branch, Use use)
{
    for (xmlNode* node = branch; node; node = NextBelow(branch, node)) {
        use(node);
        xmlAttr* attribute = node->type == XML_ELEMENT_NODE ? node->properties : nullptr;
        for (; attribute; attribute = attribute->next) {
            use(reinterpret_cast<xmlNode*>(attribute));
            if (attribute->children) use(attribute->children);
        }
    }
}
template <class Use>
void ForEachElement(xmlNode* branch, Use use)
{
    for (xmlNode* node = branch; node; node = NextBelow(branch, node))
        if (node->type == XML_ELEMENT_NODE) use(node);
}

// Whether it may be the name, with or without a prefix, of an element or attribute.
bool IsName(const std::string& name) noexcept;
// Whether a node is an element of this name, which has no prefix.
inline bool IsNamed(const xmlNode* node, std::string_view name) noexcept
{
    if (node->type != XML_ELEMENT_NODE || node->ns) return false;
    const auto* const own = reinterpret_cast<const char*>(node->name);
    return own[0] == name[0] && std::strncmp(own, name.data(), name.size()) == 0 && !own[name.size()];
}
// A node's name as it stands, or what stands for it.
std::string NameOf(const xmlNode* node);

// An element's own declaration of a prefix, which may be empty; null without one.
xmlNs* FindDeclaration(const xmlNode* element, std::string_view prefix) noexcept;

// Declarations that no element has yet.
using Declarations = std::unique_ptr<xmlNs, FreeBy<xmlFreeNsList>>;
// The declarations that a branch uses, and that are neither in it nor around `place`, where it is to hang
// (null for nowhere). Throws std::bad_alloc.
Declarations NeededAt(xmlNode* branch, const xmlNode* place);
// Puts declarations on a branch's top, and gives all its elements and attributes with a prefix the namespace
// that it stands for where they are now.
void AddDeclarations(xmlNode* branch, Declarations added) noexcept;

// Attributes can then come and go without leaving themselves behind in tables.
void ForgetIds(xmlDoc* doc) noexcept;

// Whether a branch may hang at a place, null for nowhere, with more declarations of namespaces than are in it
// now: what exceeds the limits of elements and declarations within each other could be written but not be
// loaded again.
bool FitsAt(const xmlNode* place, const xmlNode* branch, const xmlNs* more) noexcept;

} // namespace kx::xml::libxml

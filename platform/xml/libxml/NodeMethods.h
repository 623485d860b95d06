#pragma once

#include "include/platform/Xml.h"
#include "platform/xml/libxml/Markup.h"
#include "platform/xml/libxml/Tree.h"

#include <algorithm>
#include <initializer_list>
#include <new>
#include <string>
#include <vector>

namespace kx::xml::libxml {

struct NodeRef
{
    Tree* tree;
    xmlNode* node; // null for a node that couldn't be kept
};

// An object of an interface, with its references counted.
template <class Interface>
class Counted : public Interface
{
public:
    Counted() = default;
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    ULONG AddRef() noexcept override { return ++m_nRefs; }
    ULONG Release() noexcept override
    {
        const ULONG nRefs = --m_nRefs;
        if (nRefs == 0) delete this;
        return nRefs;
    }

protected:
    virtual ~Counted() = default;

    // QueryInterface of an object that has these.
    HRESULT Query(const GUID& iid, void** ppObject, std::initializer_list<const GUID*> known) noexcept
    {
        if (!ppObject) return E_POINTER;
        *ppObject = nullptr;
        if (std::none_of(known.begin(), known.end(), [&](const GUID* one) { return iid == *one; }))
            return E_NOINTERFACE;
        *ppObject = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }

private:
    ULONG m_nRefs = 1;
};

// Runs an operation of an interface, which may not throw.
template <class Run>
HRESULT Guarded(Run run) noexcept
try {
    return run();
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}
// The same for one that gives something out, which is null on failure.
template <class Output, class Run>
HRESULT Give(Output* pOutput, Run run) noexcept
{
    if (!pOutput) return E_POINTER;
    *pOutput = {};
    return Guarded(run);
}

// The methods that a document and its nodes share, on UTF-8. `ppNode` and so on are never null.
// The text, which is one of the tree's own or else put together in `joined`.
std::string_view GetText(NodeRef place, std::string& joined);
HRESULT PutText(NodeRef place, BSTR bstrText);
HRESULT AppendChild(NodeRef place, IXMLDOMNode* pChild);
HRESULT SelectSingleNode(NodeRef place, BSTR bstrPattern, IXMLDOMNode** ppNode);
HRESULT SelectNodes(NodeRef place, BSTR bstrPattern, IXMLDOMNodeList** ppList);

// The nodes that an XPath expression selects from a node, in document order. Null stands for a namespace
// node, which doesn't outlive the evaluation. Results as those of IXMLDOMNode::selectNodes.
HRESULT EvaluateXPath(Tree& tree, xmlNode* from, const std::string& expression, std::vector<xmlNode*>& found);

// IXMLDOMNode for an object, of class `Self`, that says where its node is.
template <class Interface, class Self>
class NodeMethods : public Counted<Interface>
{
public:
    HRESULT get_nodeName(BSTR* pbstr) override
    {
        return Get(pbstr, [](NodeRef place) { return NameOf(place.node); });
    }
    HRESULT get_text(BSTR* pbstr) override
    {
        std::string joined;
        return Get(pbstr, [&](NodeRef place) { return GetText(place, joined); });
    }
    HRESULT get_xml(BSTR* pbstr) override
    {
        return Get(pbstr, [](NodeRef place) { return MarkupOf(*place.tree, place.node); });
    }
    HRESULT put_text(BSTR bstrText) override
    {
        const Complaints quiet;
        return Guarded([&] { return PutText(Here(), bstrText); });
    }
    HRESULT appendChild(IXMLDOMNode* pChild, IXMLDOMNode** ppAppended) override
    {
        if (ppAppended) *ppAppended = nullptr;
        const Complaints quiet;
        const HRESULT hr = Guarded([&] { return AppendChild(Here(), pChild); });
        return FAILED(hr) || !ppAppended
                   ? hr
                   : pChild->QueryInterface(IID_IXMLDOMNode, reinterpret_cast<void**>(ppAppended));
    }
    HRESULT selectSingleNode(BSTR bstrPattern, IXMLDOMNode** ppNode) override
    {
        return Give(ppNode, [&] { return SelectSingleNode(Here(), bstrPattern, ppNode); });
    }
    HRESULT selectNodes(BSTR bstrPattern, IXMLDOMNodeList** ppList) override
    {
        return Give(ppList, [&] { return SelectNodes(Here(), bstrPattern, ppList); });
    }

private:
    NodeRef Here() const noexcept { return static_cast<const Self*>(this)->Where(); }
    template <class Text>
    HRESULT Get(BSTR* pbstr, Text get)
    {
        return Give(pbstr, [&] {
            if (!Here().node) return E_FAIL;
            *pbstr = ToBstr(get(Here()));
            return *pbstr ? S_OK : E_OUTOFMEMORY;
        });
    }
};

} // namespace kx::xml::libxml

#pragma once

#include "include/platform/Xml.h"
#include "platform/xml/Tree.h"
#include "platform/xml/WideText.h"

#include <new>
#include <string>
#include <vector>

namespace kx::xml {

struct Place
{
    Tree* tree;
    xmlNode* node; // null for a node that couldn't be kept
};

// Runs an operation of an interface, which may not throw.
template <class Run>
HRESULT Guarded(Run run) noexcept
{
    try {
        return run();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

// The methods that a document and its nodes share, on UTF-8. `ppNode` and so on are never null.
HRESULT GetName(Place place, BSTR* pbstr);
HRESULT GetText(Place place, BSTR* pbstr);
HRESULT PutText(Place place, BSTR bstrText);
HRESULT GetXml(Place place, BSTR* pbstr);
HRESULT AppendChild(Place place, IXMLDOMNode* pChild);
HRESULT SelectSingleNode(Place place, BSTR bstrPattern, IXMLDOMNode** ppNode);
HRESULT SelectNodes(Place place, BSTR bstrPattern, IXMLDOMNodeList** ppList);

// The nodes that an XPath expression selects from a node, in document order. Null stands for a namespace
// node, which doesn't outlive the evaluation. Results as those of IXMLDOMNode::selectNodes.
HRESULT EvaluateXPath(Tree& tree, xmlNode* from, const std::string& expression, std::vector<xmlNode*>& found);

// IXMLDOMNode for an object, of class `Self`, that says where its node is.
template <class Interface, class Self>
class NodeMethods : public Interface
{
public:
    HRESULT get_nodeName(BSTR* pbstr) override { return Get(pbstr, GetName); }
    HRESULT get_text(BSTR* pbstr) override { return Get(pbstr, GetText); }
    HRESULT get_xml(BSTR* pbstr) override { return Get(pbstr, GetXml); }
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
        if (!ppNode) return E_POINTER;
        *ppNode = nullptr;
        return Guarded([&] { return SelectSingleNode(Here(), bstrPattern, ppNode); });
    }
    HRESULT selectNodes(BSTR bstrPattern, IXMLDOMNodeList** ppList) override
    {
        if (!ppList) return E_POINTER;
        *ppList = nullptr;
        return Guarded([&] { return SelectNodes(Here(), bstrPattern, ppList); });
    }

protected:
    ~NodeMethods() = default;

private:
    Place Here() const noexcept { return static_cast<const Self*>(this)->Where(); }
    HRESULT Get(BSTR* pbstr, HRESULT (*get)(Place, BSTR*))
    {
        if (!pbstr) return E_POINTER;
        *pbstr = nullptr;
        return Guarded([&] { return Here().node ? get(Here(), pbstr) : E_FAIL; });
    }
};

} // namespace kx::xml

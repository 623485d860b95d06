#include "platform/xml/NodeMethods.h"

#include "platform/SameGuid.h"
#include "platform/xml/Markup.h"
#include "platform/xml/Names.h"
#include "platform/xml/NodeObject.h"

#include <algorithm>
#include <vector>

namespace kx::xml {

namespace {

class NodeList final : public IXMLDOMNodeList
{
public:
    NodeList(Tree& tree, const std::vector<xmlNode*>& nodes)
    {
        m_nodes.reserve(nodes.size());
        for (xmlNode* const node : nodes)
            m_nodes.push_back(NodeObject::Of(tree, node));
    }

    HRESULT QueryInterface(const GUID& iid, void** ppObject) override
    {
        if (!ppObject) return E_POINTER;
        *ppObject = nullptr;
        if (!SameGuid(iid, IID_IUnknown) && !SameGuid(iid, IID_IXMLDOMNodeList)) return E_NOINTERFACE;
        *ppObject = static_cast<IXMLDOMNodeList*>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++m_nRefs; }
    ULONG Release() override
    {
        const ULONG nRefs = --m_nRefs;
        if (nRefs == 0) delete this;
        return nRefs;
    }

    HRESULT get_length(long* pnLength) override
    {
        if (!pnLength) return E_POINTER;
        *pnLength = static_cast<long>(m_nodes.size());
        return S_OK;
    }
    HRESULT item(long nIndex, IXMLDOMNode** ppNode) override
    {
        if (!ppNode) return E_POINTER;
        *ppNode = nullptr;
        if (nIndex < 0 || static_cast<std::size_t>(nIndex) >= m_nodes.size()) return S_FALSE;
        *ppNode = Ref(m_nodes[static_cast<std::size_t>(nIndex)]).Detach();
        return S_OK;
    }

private:
    ~NodeList() = default;

    ULONG m_nRefs = 1;
    std::vector<Ref<NodeObject>> m_nodes;
};

// An element's or attribute's only text, where it lies.
const xmlNode* OnlyText(const xmlNode* node) noexcept
{
    const xmlNode* const child = node->children;
    const bool bText =
        child && !child->next && (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE);
    return bText ? child : nullptr;
}

std::vector<xmlNode*> ChildrenNamed(const xmlNode* parent, std::string_view name)
{
    std::vector<xmlNode*> found;
    for (xmlNode* node = parent->children; node; node = node->next)
        if (IsNamed(node, name)) found.push_back(node);
    return found;
}

// Children by their plain name are found without XPath, whose answer would be the same: this is what records
// are read by. A name with a prefix that nothing declares is one too.
bool IsPlainName(const std::string& pattern) noexcept
{
    const auto isPlain = [](char ch) {
        return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || ch == '_';
    };
    if (!pattern.empty() && std::all_of(pattern.begin(), pattern.end(), isPlain)) return true; // as most
    return pattern.find(':') == pattern.npos && IsName(pattern);
}

} // namespace

HRESULT GetName(Place place, BSTR* pbstr)
{
    return Deliver(NameOf(place.node), pbstr);
}

HRESULT GetText(Place place, BSTR* pbstr)
{
    const bool bHolder = place.node->type == XML_ELEMENT_NODE || place.node->type == XML_ATTRIBUTE_NODE;
    if (bHolder && !place.node->children) return Deliver({}, pbstr);
    if (const xmlNode* const text = bHolder ? OnlyText(place.node) : nullptr)
        return Deliver(ViewOf(text->content), pbstr);
    if (!bHolder && place.node->type != XML_DOCUMENT_NODE) return Deliver(ViewOf(place.node->content), pbstr);
    std::string joined;
    const xmlNode* const top = bHolder ? place.node : place.tree->Root();
    for (xmlNode* node = top ? top->children : nullptr; node; node = NextBelow(top, node))
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
            joined += ViewOf(node->content);
    return Deliver(joined, pbstr);
}

HRESULT GetXml(Place place, BSTR* pbstr)
{
    return Deliver(MarkupOf(*place.tree, place.node), pbstr);
}

HRESULT SelectSingleNode(Place place, BSTR bstrPattern, IXMLDOMNode** ppNode)
{
    if (!place.node) return E_FAIL;
    const std::string pattern = ToUtf8(bstrPattern);
    xmlNode* node = nullptr;
    HRESULT hr = E_INVALIDARG;
    const bool bPlain = IsPlainName(pattern);
    if (!bPlain) {
        std::vector<xmlNode*> found;
        hr = EvaluateXPath(*place.tree, place.node, pattern, found);
        if (hr == S_OK) node = found.front();
    }
    if (bPlain || (hr == E_INVALIDARG && IsName(pattern))) {
        node = place.tree->Children().Find(place.node, pattern);
        hr = node ? S_OK : S_FALSE;
    }
    if (hr == S_OK) *ppNode = NodeObject::Of(*place.tree, node).Detach();
    return hr;
}

HRESULT SelectNodes(Place place, BSTR bstrPattern, IXMLDOMNodeList** ppList)
{
    if (!place.node) return E_FAIL;
    const std::string pattern = ToUtf8(bstrPattern);
    std::vector<xmlNode*> found;
    HRESULT hr = E_INVALIDARG;
    if (!IsPlainName(pattern)) hr = EvaluateXPath(*place.tree, place.node, pattern, found);
    if (hr == E_INVALIDARG && IsName(pattern))
        found = ChildrenNamed(place.node, pattern);
    else if (FAILED(hr))
        return hr;
    *ppList = new NodeList(*place.tree, found);
    return S_OK;
}

} // namespace kx::xml

#include "platform/xml/libxml/NodeMethods.h"

#include "platform/xml/libxml/NodeObject.h"

#include <vector>

namespace kx::xml {

namespace {

class NodeList final : public Counted<IXMLDOMNodeList>
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
        return Query(iid, ppObject, {&IID_IUnknown, &IID_IXMLDOMNodeList});
    }

    HRESULT get_length(long* pnLength) override
    {
        if (!pnLength) return E_POINTER;
        *pnLength = static_cast<long>(m_nodes.size());
        return S_OK;
    }
    HRESULT item(long nIndex, IXMLDOMNode** ppNode) override
    {
        return Give(ppNode, [&] {
            const auto n = static_cast<std::size_t>(nIndex); // one below 0 is beyond the end
            if (n < m_nodes.size()) *ppNode = Share(m_nodes[n].get()).release();
            return *ppNode ? S_OK : S_FALSE;
        });
    }

private:
    std::vector<Ref<NodeObject>> m_nodes;
};

// Children by their plain name are found without XPath, whose answer would be the same: this is what records
// are read by. A name with a prefix that nothing declares is one too.
HRESULT Select(Place place, const std::string& pattern, xmlNode** pFirst, std::vector<xmlNode*>& found)
{
    if (!place.node) return E_FAIL;
    if (!IsPlainName(pattern)) {
        const HRESULT hr = EvaluateXPath(*place.tree, place.node, pattern, found);
        if (pFirst && hr == S_OK) *pFirst = found.front();
        if (hr != E_INVALIDARG || !IsName(pattern)) return hr;
    }
    if (pFirst) {
        *pFirst = place.tree->Children().Find(place.node, pattern);
        return *pFirst ? S_OK : S_FALSE;
    }
    for (xmlNode* node = place.node->children; node; node = node->next)
        if (IsNamed(node, pattern)) found.push_back(node);
    return S_OK;
}

} // namespace

std::string GetText(Place place)
{
    const xmlNode* const top = place.node;
    if (top->type != XML_DOCUMENT_NODE && top->type != XML_ELEMENT_NODE && top->type != XML_ATTRIBUTE_NODE)
        return std::string(ViewOf(top->content));
    std::string joined;
    for (xmlNode* node = top->children; node; node = NextBelow(top, node))
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
            joined += ViewOf(node->content);
    return joined;
}

HRESULT SelectSingleNode(Place place, BSTR bstrPattern, IXMLDOMNode** ppNode)
{
    std::vector<xmlNode*> found;
    xmlNode* first = nullptr;
    const HRESULT hr = Select(place, ToUtf8(bstrPattern), &first, found);
    if (hr == S_OK) *ppNode = NodeObject::Of(*place.tree, first).release();
    return hr;
}

HRESULT SelectNodes(Place place, BSTR bstrPattern, IXMLDOMNodeList** ppList)
{
    std::vector<xmlNode*> found;
    const HRESULT hr = Select(place, ToUtf8(bstrPattern), nullptr, found);
    if (FAILED(hr)) return hr;
    *ppList = new NodeList(*place.tree, found);
    return S_OK;
}

} // namespace kx::xml

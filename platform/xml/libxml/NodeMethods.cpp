#include "platform/xml/libxml/NodeMethods.h"

#include "platform/xml/libxml/NodeObject.h"

#include <array>
#include <vector>

namespace kx::xml::libxml {

namespace {

class NodeList final : public Counted<IXMLDOMNodeList>
{
public:
    NodeList(Tree& tree, const std::vector<xmlNode*>& nodes)
    {
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

// A name of few letters, by which most children are read; empty for any other pattern.
std::string_view FewLetters(BSTR bstrPattern, std::array<char, 40>& room) noexcept
{
    const UINT nUnits = SysStringLen(bstrPattern);
    if (nUnits > room.size()) return {};
    for (UINT n = 0; n < nUnits; ++n) {
        const WCHAR small = bstrPattern[n] | 0x20;
        if (small < 'a' || small > 'z') return {};
        room[n] = static_cast<char>(bstrPattern[n]);
    }
    return {room.data(), nUnits};
}

// Finds the first, or all where nobody takes that. Children are found by their plain name, which one with a
// prefix that nothing declares is too, without XPath, whose answer would be the same: so records are read.
HRESULT Select(NodeRef place, BSTR bstrPattern, xmlNode** pFirst, std::vector<xmlNode*>& found)
{
    if (!place.node) return E_FAIL;
    std::array<char, 40> room;
    std::string_view name = FewLetters(bstrPattern, room);
    std::string pattern;
    if (name.empty()) {
        name = pattern = ToUtf8(bstrPattern);
        const bool bName = IsName(pattern);
        if (!bName || pattern.find(':') != pattern.npos) {
            const HRESULT hr = EvaluateXPath(*place.tree, place.node, pattern, found);
            if (pFirst && hr == S_OK) *pFirst = found.front();
            if (hr != E_INVALIDARG || !bName) return hr;
        }
    }
    if (pFirst) {
        *pFirst = place.tree->Children().Find(place.node, name);
        return *pFirst ? S_OK : S_FALSE;
    }
    for (xmlNode* node = place.node->children; node; node = node->next)
        if (IsNamed(node, name)) found.push_back(node);
    return S_OK;
}

} // namespace

std::string_view GetText(NodeRef place, std::string& joined)
{
    const xmlNode* const top = place.node;
    if (top->type != XML_DOCUMENT_NODE && top->type != XML_ELEMENT_NODE && top->type != XML_ATTRIBUTE_NODE)
        return ViewOf(top->content);
    const xmlNode* const only = top->children;
    if (only && !only->next && only->type == XML_TEXT_NODE) return ViewOf(only->content);
    for (xmlNode* node = top->children; node; node = NextBelow(top, node))
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
            joined += ViewOf(node->content);
    return joined;
}

HRESULT SelectSingleNode(NodeRef place, BSTR bstrPattern, IXMLDOMNode** ppNode)
{
    std::vector<xmlNode*> found;
    xmlNode* first = nullptr;
    const HRESULT hr = Select(place, bstrPattern, &first, found);
    if (hr == S_OK) *ppNode = NodeObject::Of(*place.tree, first).release();
    return hr;
}

HRESULT SelectNodes(NodeRef place, BSTR bstrPattern, IXMLDOMNodeList** ppList)
{
    std::vector<xmlNode*> found;
    const HRESULT hr = Select(place, bstrPattern, nullptr, found);
    if (FAILED(hr)) return hr;
    *ppList = new NodeList(*place.tree, found);
    return S_OK;
}

} // namespace kx::xml::libxml

#include "platform/xml/NodeMethods.h"

#include "platform/xml/Names.h"
#include "platform/xml/NodeList.h"
#include "platform/xml/NodeObject.h"
#include "platform/xml/Select.h"
#include "platform/xml/Serialize.h"

namespace kx::xml {

namespace {

// An element's or attribute's only text, where it lies.
const xmlNode* OnlyText(const xmlNode* node) noexcept
{
    const xmlNode* const child = node->children;
    const bool bText =
        child && !child->next && (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE);
    return bText ? child : nullptr;
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
    const XmlText joined(xmlNodeGetContent(place.node));
    return joined ? Deliver(ViewOf(joined.get()), pbstr) : E_OUTOFMEMORY;
}

HRESULT GetXml(Place place, BSTR* pbstr)
{
    return Deliver(MarkupOf(place.node), pbstr);
}

HRESULT SelectSingleNode(Place place, BSTR bstrPattern, IXMLDOMNode** ppNode)
{
    if (!place.node) return E_FAIL;
    xmlNode* found = nullptr;
    const HRESULT hr = SelectFirst(place, bstrPattern, found);
    if (hr == S_OK) *ppNode = NodeObject::Of(*place.tree, found).Detach();
    return hr;
}

HRESULT SelectNodes(Place place, BSTR bstrPattern, IXMLDOMNodeList** ppList)
{
    if (!place.node) return E_FAIL;
    std::vector<xmlNode*> found;
    const HRESULT hr = SelectAll(place, bstrPattern, found);
    if (FAILED(hr)) return hr;
    *ppList = MakeNodeList(*place.tree, found).Detach();
    return S_OK;
}

} // namespace kx::xml

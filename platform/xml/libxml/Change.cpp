#include "platform/xml/libxml/NodeObject.h"

#include <utility>
#include <vector>

namespace kx::xml::libxml {

namespace {

// Moves an element to be the last child of a place, which may be in another document, or a document's only
// one. Nothing has changed on failure, for which std::bad_alloc may stand too.
HRESULT Move(NodeObject& element, NodeRef to)
{
    const auto before = Share(&element.GetTree()); // what the branch leaves behind lives until it has settled
    auto needed = NeededAt(element.Node(), to.node);
    if (!FitsAt(to.node, element.Node(), needed.get())) return E_INVALIDARG;
    const bool bOwn = before.get() == to.tree;
    if (!bOwn && !to.tree->HasRoomForNames(xmlDictSize(before->Doc()->dict))) return E_INVALIDARG;

    if (!bOwn) element.PrepareMoveTo(*to.tree);

    xmlNode* const node = element.Node();
    before->Children().Removed(node);
    xmlUnlinkNode(node);
    if (!bOwn) element.MoveTo(*to.tree);
    if (to.node->type == XML_DOCUMENT_NODE)
        xmlDocSetRootElement(to.tree->Doc(), node);
    else
        xmlAddChild(to.node, node);
    NodeObject::Settle(*to.tree, node, std::move(needed));
    to.tree->Children().Added(node);
    return S_OK;
}

HRESULT PutElementText(NodeRef place, const std::string& text)
{
    if (text.size() > XML_MAX_TEXT) return E_INVALIDARG;
    NodePtr content(xmlNewDocTextLen(place.node->doc, ToXml(text.data()), static_cast<int>(text.size())));
    if (!content || !content->content) return E_OUTOFMEMORY;
    std::vector<std::pair<Ref<NodeObject>, Declarations>> kept;
    for (xmlNode* child = place.node->children; child; child = child->next)
        if (auto holder = NodeObject::HolderOf(*place.tree, child))
            kept.emplace_back(std::move(holder), NeededAt(child, nullptr));
    place.tree->Children().Forget(place.node);
    for (auto& [holder, needed] : kept)
        NodeObject::LetGo(*place.tree, holder->Node(), std::move(needed));
    while (xmlNode* const child = place.node->children)
        NodeObject::LetGo(*place.tree, child, {});
    xmlAddChild(place.node, content.release());
    return S_OK;
}

} // namespace

HRESULT PutText(NodeRef place, BSTR bstrText)
{
    const xmlElementType type = place.node ? place.node->type : XML_DOCUMENT_NODE;
    if (type == XML_ELEMENT_NODE) return PutElementText(place, ToXmlText(bstrText));
    if (type != XML_ATTRIBUTE_NODE) return E_FAIL;
    return SetValue(reinterpret_cast<xmlAttr*>(place.node), ToXmlText(bstrText));
}

HRESULT AppendChild(NodeRef place, IXMLDOMNode* pChild)
{
    const auto child = NodeObject::From(pChild);
    if (!child || !child->IsElement()) return E_INVALIDARG;
    if (place.node && place.node->type == XML_DOCUMENT_NODE)
        return place.tree->Root() ? E_FAIL : Move(*child, place);
    if (!place.node || place.node->type != XML_ELEMENT_NODE) return E_FAIL;
    for (const xmlNode* around = place.node; around; around = around->parent)
        if (around == child->Node()) return E_INVALIDARG;
    return Move(*child, place);
}

HRESULT SetRoot(NodeRef document, NodeObject& element)
{
    xmlNode* const old = document.tree->Root();
    if (element.Node() == old) return S_OK;
    const auto holder = old ? NodeObject::HolderOf(*document.tree, old) : Ref<NodeObject>();
    const HRESULT hr = Move(element, document);
    if (SUCCEEDED(hr) && old) NodeObject::LetGo(*document.tree, old, {});
    return hr;
}

} // namespace kx::xml::libxml

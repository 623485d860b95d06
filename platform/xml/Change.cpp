#include "platform/xml/Names.h"
#include "platform/xml/NodeObject.h"

#include <vector>

namespace kx::xml {

namespace {

bool LiesIn(const xmlNode* node, const xmlNode* branch) noexcept
{
    while (node && node != branch)
        node = node->parent;
    return node;
}

// References mean nothing in a document that doesn't declare their entities.
void DropReferences(xmlNode* branch) noexcept
{
    for (xmlNode* node = branch; node;) {
        xmlNode* const next = NextBelow(branch, node);
        if (node->type == XML_ENTITY_REF_NODE) {
            xmlUnlinkNode(node);
            xmlFreeNode(node);
        }
        node = next;
    }
}

// Takes an element out of its place, into another tree if need be.
HRESULT Take(NodeObject& element, Tree& to)
{
    xmlNode* const node = element.Node();
    if (node->parent) element.GetTree().Children().Forget();
    if (node->doc == to.Doc()) {
        xmlUnlinkNode(node);
        return S_OK;
    }
    if (!to.HasRoomForNames(xmlDictSize(node->doc->dict))) return E_INVALIDARG;
    element.GetTree().Children().Forget();
    const Complaints complaints;
    if (xmlDOMWrapAdoptNode(nullptr, node->doc, node, to.Doc(), nullptr, 0) != 0) return E_OUTOFMEMORY;
    DropReferences(node);
    return S_OK;
}

void SettleIn(Tree& to, xmlNode* node) noexcept
{
    KeepNamespaces(node);
    ResolvePrefixes(node);
    NodeObject::Settle(to, node);
}

HRESULT PutElementText(Place place, const std::string& text)
{
    if (text.size() > XML_MAX_TEXT) return E_INVALIDARG;
    NodePtr content(xmlNewDocTextLen(place.node->doc, ToXml(text.data()), static_cast<int>(text.size())));
    if (!content || !content->content) return E_OUTOFMEMORY;
    std::vector<Ref<NodeObject>> holders;
    for (xmlNode* child = place.node->children; child; child = child->next)
        if (auto holder = NodeObject::HolderOf(*place.tree, child)) holders.push_back(std::move(holder));
    if (!IsField(place.node)) place.tree->Children().Forget();
    while (xmlNode* const child = place.node->children)
        NodeObject::LetGo(*place.tree, child);
    xmlAddChild(place.node, content.release());
    return S_OK;
}

} // namespace

HRESULT PutText(Place place, BSTR bstrText)
{
    if (!place.node) return E_FAIL;
    switch (place.node->type) {
    case XML_ELEMENT_NODE:
        return PutElementText(place, ToXmlText(bstrText));
    case XML_ATTRIBUTE_NODE:
        return SetValue(reinterpret_cast<xmlAttr*>(place.node), ToXmlText(bstrText));
    default:
        return E_FAIL;
    }
}

HRESULT AppendChild(Place place, IXMLDOMNode* pChild)
{
    const auto child = NodeObject::From(pChild);
    if (!child || !child->IsElement()) return E_INVALIDARG;
    if (place.node && place.node->type == XML_DOCUMENT_NODE)
        return place.tree->Root() ? E_FAIL : SetRoot(*place.tree, *child);
    if (!place.node || place.node->type != XML_ELEMENT_NODE) return E_FAIL;
    xmlNode* const node = child->Node();
    if (LiesIn(place.node, node) || !(Shape::Above(place.node) + Shape::Below(node)).Fits())
        return E_INVALIDARG;

    const Ref before(&child->GetTree()); // what the branch leaves behind lives until it has settled
    const HRESULT hr = Take(*child, *place.tree);
    if (FAILED(hr)) return hr;
    xmlAddChild(place.node, node);
    SettleIn(*place.tree, node);
    place.tree->Children().Added(place.node, node);
    return S_OK;
}

HRESULT SetRoot(Tree& tree, NodeObject& element)
{
    xmlNode* const node = element.Node();
    if (node == tree.Root()) return S_OK;
    if (!Shape::Below(node).Fits()) return E_INVALIDARG;

    const Ref before(&element.GetTree());
    xmlNode* const old = tree.Root();
    const auto holder = old ? NodeObject::HolderOf(tree, old) : Ref<NodeObject>();
    const HRESULT hr = Take(element, tree);
    if (FAILED(hr)) return hr;
    xmlDocSetRootElement(tree.Doc(), node);
    SettleIn(tree, node);
    if (old) NodeObject::LetGo(tree, old);
    return S_OK;
}

} // namespace kx::xml

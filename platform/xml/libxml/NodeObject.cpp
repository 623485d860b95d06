#include "platform/xml/libxml/NodeObject.h"

#include <libxml/valid.h>
#include <utility>

namespace kx::xml::libxml {

namespace {

// Tells an object of this class from a client's own.
constexpr GUID kOwnNode{0x9B1F6E04, 0x5C7A, 0x4B0D, {0x8E, 0x33, 0x61, 0xD2, 0x0F, 0xA4, 0x77, 0x5B}};

NodeObject* ObjectOf(const xmlNode* node) noexcept
{
    return static_cast<NodeObject*>(node->_private);
}

// Calls it for each object in the branch.
template <class Use>
void ForEachObject(xmlNode* branch, Use use)
{
    ForEachNode(branch, [&](const xmlNode* node) {
        if (node->_private) use(*ObjectOf(node));
    });
}

// Calls it for all texts of the branch that a document's dictionary may hold.
template <class Use>
void ForEachText(xmlNode* branch, Use use)
{
    ForEachNode(branch, [&](xmlNode* node) {
        use(node->name);
        if (node->type != XML_ATTRIBUTE_NODE) use(node->content);
    });
}

} // namespace

Ref<NodeObject> NodeObject::Of(Tree& tree, xmlNode* node)
{
    if (!node || node->type == XML_DOCUMENT_NODE) return Ref<NodeObject>(new NodeObject(tree, node));
    if (node->_private) return Share(ObjectOf(node));
    auto object = Ref<NodeObject>(new NodeObject(tree, node));
    node->_private = object.get();
    const xmlNode* const parent = node->parent; // most are found from another one's object, in the document
    if (parent && parent->_private && parent->parent && !ObjectOf(parent)->m_anchor) return object;
    xmlNode* const top = TopOf(node);
    if (top != node && top->type != XML_DOCUMENT_NODE) object->m_anchor = Of(tree, top);
    return object;
}

Ref<NodeObject> NodeObject::From(IXMLDOMNode* pNode)
{
    void* pOwn = nullptr;
    if (!pNode || FAILED(pNode->QueryInterface(kOwnNode, &pOwn))) return {};
    return Ref<NodeObject>(static_cast<NodeObject*>(static_cast<IXMLDOMElement*>(pOwn)));
}

NodeObject::~NodeObject()
{
    if (!m_node || m_node->type == XML_DOCUMENT_NODE) return;
    m_node->_private = nullptr;
    if (m_node->parent) return;
    m_tree->Children().Forget(m_node);
    xmlFreeNode(m_node);
}

void NodeObject::PrepareMoveTo(Tree& tree)
{
    ForEachText(m_node, [&](const xmlChar* text) {
        if (xmlDictOwns(m_tree->Doc()->dict, text) == 1 && !xmlDictLookup(tree.Doc()->dict, text, -1))
            throw std::bad_alloc();
    });
}

void NodeObject::MoveTo(Tree& tree) noexcept
{
    m_tree->Children().Forget(m_node);
    for (xmlNode *node = m_node, *next; node; node = next) {
        next = NextBelow(m_node, node);
        if (node->type != XML_ENTITY_REF_NODE) continue; // means nothing in another document
        if (node->_private) ObjectOf(node)->m_node = nullptr;
        xmlUnlinkNode(node);
        xmlFreeNode(node);
    }
    ForEachText(m_node, [&](auto*& text) {
        if (xmlDictOwns(m_tree->Doc()->dict, text) == 1)
            text = const_cast<xmlChar*>(xmlDictLookup(tree.Doc()->dict, text, -1));
    });
    ForEachNode(m_node, [&](xmlNode* node) {
        auto* const attribute = reinterpret_cast<xmlAttr*>(node);
        if (node->type != XML_ATTRIBUTE_NODE) return;
        attribute->atype =
            xmlIsID(tree.Doc(), node->parent, attribute) == 1 ? XML_ATTRIBUTE_ID : xmlAttributeType{};
    });
}

void NodeObject::Settle(Tree& tree, xmlNode* branch, Declarations needed) noexcept
{
    AddDeclarations(branch, std::move(needed));
    xmlNode* const top = TopOf(branch);
    NodeObject* const anchor = top->type == XML_DOCUMENT_NODE ? nullptr : ObjectOf(top);
    ForEachObject(branch, [&](NodeObject& object) {
        if (object.m_tree.get() != &tree) object.m_tree = Share(&tree);
        if (anchor || object.m_anchor) object.m_anchor = Share(&object == anchor ? nullptr : anchor);
    });
}

Ref<NodeObject> NodeObject::HolderOf(Tree& tree, xmlNode* branch)
{
    bool bNeeded = false;
    ForEachObject(branch, [&](const NodeObject&) { bNeeded = true; });
    return bNeeded ? Of(tree, branch) : Ref<NodeObject>();
}

void NodeObject::LetGo(Tree& tree, xmlNode* branch, Declarations needed) noexcept
{
    xmlUnlinkNode(branch);
    if (branch->_private) return Settle(tree, branch, std::move(needed));
    tree.Children().Forget(branch);
    xmlFreeNode(branch);
}

HRESULT NodeObject::QueryInterface(const GUID& iid, void** ppObject)
{
    const GUID& own = IsElement() ? IID_IXMLDOMElement : kOwnNode;
    return Query(iid, ppObject, {&own, &kOwnNode, &IID_IXMLDOMNode, &IID_IUnknown});
}

HRESULT NodeObject::getAttribute(BSTR bstrName, VARIANT* pValue)
{
    return Guarded([&]() -> HRESULT {
        if (!pValue) return E_POINTER;
        VariantInit(pValue);
        if (!IsElement()) return E_FAIL;
        const auto value = GetAttribute(m_node, ToUtf8(bstrName));
        pValue->vt = VT_NULL;
        if (!value) return S_FALSE;
        const BSTR bstr = ToBstr(*value);
        if (!bstr) return E_OUTOFMEMORY;
        pValue->vt = VT_BSTR;
        pValue->bstrVal = bstr;
        return S_OK;
    });
}

HRESULT NodeObject::setAttribute(BSTR bstrName, VARIANT value)
{
    return Guarded([&]() -> HRESULT {
        if (!IsElement()) return E_FAIL;
        const Complaints quiet;
        VARIANT text{};
        const HRESULT hr = VariantChangeType(&text, &value, 0, VT_BSTR);
        if (FAILED(hr)) return hr;
        const HRESULT hrSet = SetAttribute(m_node, ToUtf8(bstrName), ToXmlText(text.bstrVal));
        VariantClear(&text);
        return hrSet;
    });
}

} // namespace kx::xml::libxml

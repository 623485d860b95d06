#include "platform/xml/NodeObject.h"

#include "platform/SameGuid.h"
#include "platform/xml/Names.h"

namespace kx::xml {

namespace {

// Tells an object of this class from a client's own.
constexpr GUID kOwnNode{0x9B1F6E04, 0x5C7A, 0x4B0D, {0x8E, 0x33, 0x61, 0xD2, 0x0F, 0xA4, 0x77, 0x5B}};

NodeObject* ObjectOf(const xmlNode* node) noexcept
{
    return static_cast<NodeObject*>(node->_private);
}

xmlNode* TopOf(xmlNode* node) noexcept
{
    while (node->parent)
        node = node->parent;
    return node;
}

// Calls it for every object in the branch.
template <class Use>
void ForEachObject(xmlNode* branch, Use use)
{
    for (xmlNode* node = branch; node; node = NextBelow(branch, node)) {
        if (node->_private) use(*ObjectOf(node));
        if (node->type != XML_ELEMENT_NODE) continue;
        for (xmlAttr* attribute = node->properties; attribute; attribute = attribute->next)
            if (attribute->_private) use(*static_cast<NodeObject*>(attribute->_private));
    }
}

bool HasObject(xmlNode* branch) noexcept
{
    for (xmlNode* node = branch; node; node = NextBelow(branch, node)) {
        if (node->_private) return true;
        if (node->type != XML_ELEMENT_NODE) continue;
        for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next)
            if (attribute->_private) return true;
    }
    return false;
}

} // namespace

Ref<NodeObject> NodeObject::Of(Tree& tree, xmlNode* node)
{
    if (!node || node->type == XML_DOCUMENT_NODE) return Ref<NodeObject>::Adopt(new NodeObject(tree, node));
    if (node->_private) return Ref(ObjectOf(node));
    auto object = Ref<NodeObject>::Adopt(new NodeObject(tree, node));
    node->_private = object.Get();
    if (!IsBelowAttached(node)) object->m_anchor = AnchorOf(tree, node);
    return object;
}

// Most nodes, found from another one's object, without a climb to the top.
bool NodeObject::IsBelowAttached(const xmlNode* node) noexcept
{
    const xmlNode* const parent = node->parent;
    return parent && parent->_private && parent->parent && !ObjectOf(parent)->m_anchor;
}

Ref<NodeObject> NodeObject::AnchorOf(Tree& tree, xmlNode* node)
{
    xmlNode* const top = TopOf(node);
    return top == node || top->type == XML_DOCUMENT_NODE ? Ref<NodeObject>() : Of(tree, top);
}

Ref<NodeObject> NodeObject::From(IXMLDOMNode* pNode)
{
    void* pOwn = nullptr;
    if (!pNode || FAILED(pNode->QueryInterface(kOwnNode, &pOwn))) return {};
    return Ref<NodeObject>::Adopt(static_cast<NodeObject*>(pOwn));
}

NodeObject::~NodeObject()
{
    if (!m_node || m_node->type == XML_DOCUMENT_NODE) return;
    m_node->_private = nullptr;
    if (m_node->parent) return;
    m_tree->Children().Forget();
    xmlFreeNode(m_node);
}

void NodeObject::Settle(Tree& tree, xmlNode* branch) noexcept
{
    xmlNode* const top = TopOf(branch);
    const auto anchor = top->type == XML_DOCUMENT_NODE ? Ref<NodeObject>() : Ref(ObjectOf(top));
    ForEachObject(branch, [&](NodeObject& object) {
        if (object.m_tree.Get() != &tree) object.m_tree = Ref(&tree);
        if (anchor || object.m_anchor) object.m_anchor = object.m_node == top ? Ref<NodeObject>() : anchor;
    });
}

Ref<NodeObject> NodeObject::HolderOf(Tree& tree, xmlNode* branch)
{
    return HasObject(branch) ? Of(tree, branch) : Ref<NodeObject>();
}

void NodeObject::LetGo(Tree& tree, xmlNode* branch) noexcept
{
    xmlUnlinkNode(branch);
    if (!branch->_private) {
        xmlFreeNode(branch);
        return;
    }
    KeepNamespaces(branch);
    Settle(tree, branch);
}

HRESULT NodeObject::QueryInterface(const GUID& iid, void** ppObject)
{
    if (!ppObject) return E_POINTER;
    *ppObject = nullptr;
    if ((IsElement() && SameGuid(iid, IID_IXMLDOMElement)) || SameGuid(iid, IID_IXMLDOMNode) ||
        SameGuid(iid, IID_IUnknown))
        *ppObject = static_cast<IXMLDOMElement*>(this);
    else if (SameGuid(iid, kOwnNode))
        *ppObject = this;
    else
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
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

} // namespace kx::xml

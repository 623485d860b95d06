#pragma once

#include "platform/xml/libxml/NodeMethods.h"

#include <optional>

namespace kx::xml::libxml {

// A node's object, found by the node's `_private` for as long as it lives.
//
// A node that hangs in the document lives as long as its tree. A branch that doesn't lives as long as one of
// its nodes has an object: its top then has one too, which the others in the branch hold a reference on
// (their anchor), and whose end frees the branch.
class NodeObject final : public NodeMethods<IXMLDOMElement, NodeObject>
{
public:
    // The node's object, made unless it has one. Of no node (one that can't be kept) all operations fail.
    static Ref<NodeObject> Of(Tree& tree, xmlNode* node);
    // The object behind an interface pointer; null for null and for a client's own implementation.
    static Ref<NodeObject> From(IXMLDOMNode* pNode);

    Tree& GetTree() const noexcept { return *m_tree; }
    xmlNode* Node() const noexcept { return m_node; }
    NodeRef Where() const noexcept { return {m_tree.get(), m_node}; }
    bool IsElement() const noexcept { return m_node && m_node->type == XML_ELEMENT_NODE; }

    // Make what lies in this branch that of another tree, where it hangs nowhere yet: its names and short
    // texts are shared with the other tree's. Nothing has changed if the first throws std::bad_alloc.
    // Namespaces and objects follow in Settle.
    void PrepareMoveTo(Tree& tree);
    void MoveTo(Tree& tree) noexcept;
    // To be called for a branch after it was moved to a tree and place, with the declarations that it needs
    // there: its objects move along. Its top is the document or has an object.
    static void Settle(Tree& tree, xmlNode* branch, Declarations needed) noexcept;
    // The things needed to let go of a branch, made while nothing has changed yet: its object, if one of its
    // nodes has one.
    static Ref<NodeObject> HolderOf(Tree& tree, xmlNode* branch);
    // Takes a branch out of its place, and frees it or leaves it to its holder.
    static void LetGo(Tree& tree, xmlNode* branch, Declarations needed) noexcept;

    HRESULT QueryInterface(const GUID& iid, void** ppObject) override;
    HRESULT getAttribute(BSTR bstrName, VARIANT* pValue) override;
    HRESULT setAttribute(BSTR bstrName, VARIANT value) override;

private:
    NodeObject(Tree& tree, xmlNode* node) noexcept : m_tree(Share(&tree)), m_node(node) {}
    ~NodeObject() override;

    Ref<Tree> m_tree;
    xmlNode* m_node;
    Ref<NodeObject> m_anchor;
};

// An element's attributes by their names as they stand, namespace declarations among them.
std::optional<std::string> GetAttribute(const xmlNode* element, const std::string& name);

// Does the same as IXMLDOMElement::setAttribute.
HRESULT SetAttribute(xmlNode* element, const std::string& name, const std::string& value);
// Overwrites an attribute's value.
HRESULT SetValue(xmlAttr* attribute, const std::string& value);

// Puts an element in the place of the document's, as IXMLDOMDocument::putref_documentElement.
HRESULT SetRoot(NodeRef document, NodeObject& element);

} // namespace kx::xml::libxml

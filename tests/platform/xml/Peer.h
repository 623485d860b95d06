#pragma once

#include "tests/platform/xml/Nodes.h"

#include <libxml/tree.h>

namespace test {

// The same document as libxml2 itself reads it, with entities replaced and nothing fetched.
class Peer : Fixed
{
public:
    explicit Peer(const std::string& bytes);
    ~Peer();

    // Whether it is accepted.
    explicit operator bool() const { return m_doc != nullptr; }
    // The canonical form; where there is none (a namespace's name is relative) the plain one.
    std::string Canonical();
    // Elements without a prefix are then in no namespace.
    void ForgetDefaultNamespaces();
    // The result of `Selected` below for the document's element.
    std::u16string Selected(const std::string& pattern) const;

private:
    xmlDoc* m_doc;
};

// Tells what a pattern selects from an element: name and text of each node, or that it is no pattern or has
// another result.
std::u16string Selected(IXMLDOMElement* pElement, const std::string& pattern);

} // namespace test

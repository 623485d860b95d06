#pragma once

#include "platform/xml/NodeMethods.h"

#include <vector>

namespace kx::xml {

// The first node that a pattern selects, and all of them in document order. S_FALSE for none; null stands for
// a node that is none of the tree's. Results as those of IXMLDOMNode::selectSingleNode.
HRESULT SelectFirst(Place place, BSTR bstrPattern, xmlNode*& found);
HRESULT SelectAll(Place place, BSTR bstrPattern, std::vector<xmlNode*>& found);

} // namespace kx::xml

#pragma once

#include "platform/xml/Tree.h"

#include "include/platform/Guid.h"

#include <string>
#include <vector>

namespace kx::xml {

// The nodes that an XPath expression selects from a node, in document order. Null stands for a namespace
// node, which doesn't outlive the evaluation. Results as those of IXMLDOMNode::selectNodes.
HRESULT EvaluateXPath(Tree& tree, xmlNode* from, const std::string& expression, std::vector<xmlNode*>& found);

} // namespace kx::xml

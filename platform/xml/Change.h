#pragma once

#include "platform/xml/NodeObject.h"

namespace kx::xml {

// Puts an element in the place of the document's, as IXMLDOMDocument::putref_documentElement.
HRESULT SetRoot(Tree& tree, NodeObject& element);

} // namespace kx::xml

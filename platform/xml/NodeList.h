#pragma once

#include "include/platform/Xml.h"
#include "platform/xml/Tree.h"

#include <vector>

namespace kx::xml {

Ref<IXMLDOMNodeList> MakeNodeList(Tree& tree, const std::vector<xmlNode*>& nodes);

} // namespace kx::xml

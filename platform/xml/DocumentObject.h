#pragma once

#include "include/platform/Xml.h"
#include "platform/xml/Ref.h"

namespace kx::xml {

// An empty document.
Ref<IXMLDOMDocument> MakeDocument();

} // namespace kx::xml

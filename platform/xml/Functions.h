#pragma once

#include "include/platform/Xml.h"

namespace kx::xml {

// What the XML module gives.
struct Functions
{
    // An empty document with one reference; throws std::bad_alloc.
    IXMLDOMDocument* (*makeDocument)();
};

} // namespace kx::xml

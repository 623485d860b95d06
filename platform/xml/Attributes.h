#pragma once

#include "include/platform/Guid.h"
#include "platform/xml/Libxml.h"

#include <optional>
#include <string>

// An element's attributes by their names as they stand, namespace declarations among them.

namespace kx::xml {

std::optional<std::string> GetAttribute(const xmlNode* element, const std::string& name);

// As IXMLDOMElement::setAttribute.
HRESULT SetAttribute(xmlNode* element, const std::string& name, const std::string& value);
// Overwrites an attribute's value.
HRESULT SetValue(xmlAttr* attribute, const std::string& value);

} // namespace kx::xml

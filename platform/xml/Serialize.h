#pragma once

#include "platform/xml/Libxml.h"

#include <optional>
#include <string>

namespace kx::xml {

// A node's or a document's markup in UTF-8, a document's declaration without an encoding.
std::string MarkupOf(xmlNode* node);

// libxml2's marks in `standalone`.
inline bool HasDeclaration(const xmlDoc* doc) noexcept
{
    return doc->standalone != -1;
}

// A document as it lies in a file, in the encoding that it declares, or in UTF-8 where that can't spell it;
// nothing for a lack of memory.
std::optional<std::string> FileContentOf(xmlDoc* doc);

} // namespace kx::xml

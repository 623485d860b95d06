#pragma once

#include "platform/xml/Tree.h"

#include <string>

namespace kx::xml {

// A node's or a document's markup in UTF-8, a document's declaration without an encoding. Throw
// std::bad_alloc.
std::string MarkupOf(const Tree& tree, const xmlNode* node);

// A document as it lies in a file: in the encoding that it declares, or in UTF-8 where that isn't kept or
// would read as something else.
std::string FileContentOf(const Tree& tree);

} // namespace kx::xml

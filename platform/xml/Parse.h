#pragma once

#include "platform/xml/Tree.h"

#include <string_view>

namespace kx::xml {

// Documents from what anybody may have written: null for what is refused, in time and memory that follow the
// length of the input. Nothing outside of it is ever looked for.

// A file's bytes in the encoding that they declare.
DocPtr ParseFile(std::string_view bytes);
// UTF-8, whatever encoding is declared; that becomes the document's if there is such a one.
DocPtr ParseText(std::string_view utf8);

} // namespace kx::xml

#pragma once

#include "platform/xml/Tree.h"

#include <string_view>

namespace kx::xml {

// Documents from what anybody may have written: null for what is refused, in time and memory that follow the
// length of the input. Nothing outside of it is ever looked for. Throw std::bad_alloc.

// A file's bytes, in the encoding that they declare.
Ref<Tree> ParseFile(std::string bytes);
// UTF-8, whatever encoding is declared; that becomes the document's.
Ref<Tree> ParseText(std::string_view utf8);

} // namespace kx::xml

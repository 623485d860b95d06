#pragma once

#include "include/platform/Variant.h"

#include <string>
#include <string_view>

namespace kx::xml {

// UTF-8; half a surrogate pair becomes "?".
std::string ToUtf8(BSTR bstr);
// The same with "?" for each character that an XML document can't hold.
std::string ToXmlText(BSTR bstr);

// Null for a lack of memory.
BSTR ToBstr(std::string_view utf8);
// Puts it there: S_OK, E_POINTER or E_OUTOFMEMORY.
HRESULT Deliver(std::string_view utf8, BSTR* pbstr);

// The process's code page.
std::string ToCodePage(BSTR bstr);

} // namespace kx::xml

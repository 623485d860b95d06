#pragma once

#include "include/KXExport.h"
#include "include/platform/Xml.h"

#include <string>
#include <string_view>

namespace kx::xml {

// The functions of the XML module.
struct Functions
{
    // An empty document with one reference; throws std::bad_alloc.
    IXMLDOMDocument* (*makeDocument)();
};

// It uses these: texts as clients have them.

// UTF-8; half a surrogate pair becomes "?".
KX_API std::string ToUtf8(BSTR bstr);
// The same with "?" for each character that an XML document can't hold.
KX_API std::string ToXmlText(BSTR bstr);

// Null for a lack of memory.
KX_API BSTR ToBstr(std::string_view utf8);

// The process's code page.
KX_API std::string ToCodePage(BSTR bstr);

} // namespace kx::xml

#pragma once

#include "KXExport.h"
#include "platform/String.h"

#include <string>
#include <string_view>

// Texts of the library, which are in the process's code page, from and to UTF-8, as other libraries, files
// and terminals of the system have it:
//
//     std::cout << KXText::ToUtf8(strTitle);
//     wnd.SetWindowText(KXText::FromUtf8("你好"));
//
// Nothing is thrown but a CMemoryException* (platform/Exception.h). Any thread.
namespace KXText {

// Bytes that are no character become U+FFFD, and characters that the code page lacks "?"; code page 936 lacks
// none.
KX_API CString FromUtf8(std::string_view utf8);
// Bytes that are no character become U+FFFD.
KX_API std::string ToUtf8(std::string_view text);

} // namespace KXText

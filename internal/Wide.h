#pragma once

#include "include/platform/CodePage.h"

#include <string>
#include <string_view>

namespace kx {

// A text of that code page, of at most a gigabyte, in wide units; what is no character becomes U+FFFD. Throws
// std::bad_alloc. Any thread.
inline std::u16string Widen(UINT nCodePage, std::string_view text)
{
    std::u16string wide(text.size(), u'\0'); // a byte never becomes more than one unit
    const int nUnits = MultiByteToWideChar(nCodePage, 0, text.data(), static_cast<int>(text.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(nUnits));
    return wide;
}

} // namespace kx

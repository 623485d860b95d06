#pragma once

#include "internal/Guard.h"
#include "platform/MessageBox.h"

namespace kx::draw {

// Tells the user of a client that saves before it has loaded a picture to load one first. Gives 0, the result
// of what needed the picture.
inline int TellNoImage()
{
    constexpr char szText[] = "\xC7\xEB\xCF\xC8\xCA\xB9\xD3\xC3" // in code page 936
                              "Load\xB7\xBD\xB7\xA8\xBC\xD3\xD4\xD8\xCD\xBC\xC6\xAC\xA3\xA1";
    Guard([&] { return AfxMessageBox(szText, MB_OK); });
    return 0;
}

} // namespace kx::draw

#pragma once

#include "platform/gdi/FontFace.h"

#include <string_view>
#include <vector>

namespace kx::gdi {

// A line of letters and its length in pixels, the sum of its letters' advances.
struct TextLine
{
    std::u32string text;
    int width = 0;
    int mark = -1; // the letter to be underlined, -1 for none
};

// Divides a text into lines as DrawTextA does by its flags, for a room of `nRoom` pixels. Under the text
// lock.
std::vector<TextLine> BreakLines(FontFace& face, std::string_view text, UINT nFormat, int nRoom);

} // namespace kx::gdi

#pragma once

#include "platform/gdi/text/FontFace.h"

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

// The letters of a text in the process's code page; bytes that are none become U+FFFD.
std::u32string Decode(std::string_view text);

// Takes a text as one line where nothing is to be laid out: DT_SINGLELINE, and each letter is drawn as it
// stands. That is most texts by far, and the letters of a word test. Under the text lock.
bool TakePlainLine(FontFace& face, std::string_view text, UINT nFormat, TextLine& line);

// Divides a text into lines as DrawTextA does by its flags, for a room of `nRoom` pixels. Under the text
// lock.
std::vector<TextLine> BreakLines(FontFace& face, std::string_view text, UINT nFormat, int nRoom);

// The length of letters in pixels. Under the text lock.
int Measure(FontFace& face, std::u32string_view text);

} // namespace kx::gdi

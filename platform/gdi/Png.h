#pragma once

#include "platform/gdi/ImageFile.h"

#include <csetjmp>
#include <png.h>

namespace kx::gdi {

// The claims of a PNG's first bytes.
struct PngHeader
{
    DWORD nWidth = 0;
    DWORD nHeight = 0;
    int nDepth = 0; // bits of a pixel
};

// Nothing for what doesn't begin as a PNG does.
std::optional<PngHeader> ParsePngHeader(FileBytes file) noexcept;

// A PNG's pixels, the high byte their opacity. Nothing for one that is broken, cut before its end mark, or
// has a side above `nMaxSide`. Only what the pixels need is read of it: texts and profiles are passed over.
//
// With `pbCut` a file that ends within its pixels is read too, as far as it goes, if its first row is there:
// what lacks is 0 then, and *pbCut tells of it.
std::optional<Surface> ReadPng(FileBytes file, int nMaxSide, bool* pbCut = nullptr);

// Errors of the PNG library leave by a jump over the frames in between, none of which may need a destructor.
// Nothing is written anywhere.
[[noreturn]] inline void OnPngError(png_structp png, png_const_charp pszReason)
{
    NoteRefusal(pszReason);
    png_longjmp(png, 1);
}

inline void OnPngWarning(png_structp, png_const_charp)
{
}

} // namespace kx::gdi

#pragma once

#include "platform/gdi/ImageFile.h"

#include <csetjmp>
#include <png.h>

namespace kx::gdiplus::codecs {

// Errors of the PNG library leave by a jump over the frames in between, none of which may need a destructor.
// Nothing is written anywhere.
[[noreturn]] inline void OnPngError(png_structp png, png_const_charp pszReason)
{
    gdi::NoteRefusal(pszReason);
    png_longjmp(png, 1);
}

inline void OnPngWarning(png_structp, png_const_charp)
{
}

} // namespace kx::gdiplus::codecs

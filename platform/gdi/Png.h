#pragma once

#include "platform/gdi/ImageFile.h"

namespace kx::gdi {

// What the first bytes of a PNG say.
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
std::optional<Surface> ReadPng(FileBytes file, int nMaxSide);

} // namespace kx::gdi

#pragma once

#include "platform/gdi/ImageFile.h"

namespace kx::gdi {

// The claims of a PNG's first bytes.
struct PngHeader
{
    DWORD nWidth = 0;
    DWORD nHeight = 0;
    int nDepth = 0; // bits of a pixel
};

// Nothing for what doesn't begin as a PNG does.
KX_API std::optional<PngHeader> ParsePngHeader(FileBytes file) noexcept;

// The reader of PNG comes from the module for pictures.
struct PngFunctions
{
    // A PNG's pixels, the high byte their opacity. Nothing for one that is broken, cut before its end mark,
    // or has a side above `nMaxSide`. Only what the pixels need is read of it: texts and profiles are passed
    // over.
    //
    // With `pbCut` a file that ends within its pixels is read too, as far as it goes, if its first row is
    // there: what lacks is 0 then, and *pbCut tells of it.
    std::optional<Surface> (*read)(FileBytes file, int nMaxSide, bool* pbCut);
};

// Reads a whole file as PngFunctions::read does; nothing where the module can't be used.
std::optional<Surface> ReadPng(FileBytes file, int nMaxSide);

} // namespace kx::gdi

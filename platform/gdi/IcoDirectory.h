#pragma once

#include "platform/gdi/BmpHeader.h"

namespace kx::gdi {

// One image of an ICO file.
struct IcoEntry
{
    FileBytes bytes;
    std::optional<BmpHeader> bmp; // of the icon's own height; without one the bytes are a PNG
    int nWidth = 0;
    int nHeight = 0;
    int nDepth = 0;
};

// The entry that ReadIcon takes. Nothing for what is no icon file or has none that is sound.
std::optional<IcoEntry> ChooseIcoEntry(FileBytes file, int cx, int cy) noexcept;

} // namespace kx::gdi

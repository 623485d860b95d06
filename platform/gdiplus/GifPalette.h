#pragma once

#include "platform/gdiplus/Encode.h"

#include <vector>

namespace kx::gdiplus {

// A picture as indices into at most 256 colours.
struct IndexedPicture
{
    std::vector<DWORD> colors; // 0x00RRGGBB
    int transparent = -1;      // its index, behind those of the colours, if there is one
    Bytes indices;             // the top row first
};

// Throws std::bad_alloc.
IndexedPicture ToIndices(const PixelView& view);

} // namespace kx::gdiplus

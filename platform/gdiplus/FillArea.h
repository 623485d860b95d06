#pragma once

#include "platform/gdiplus/Brush.h"
#include "platform/gdiplus/Graphics.h"

namespace kx::gdiplus {

// Paints pixels, in the graphics' coordinates, each once. Throws std::bad_alloc and paints nothing then.
void FillArea(const Target& target, const Gdiplus::GpBrush& brush, gdi::PixelRegion area);

// A block of pixels; nothing for a size of 0 or below.
gdi::PixelRegion BlockArea(int x, int y, int nWidth, int nHeight) noexcept;

} // namespace kx::gdiplus

#pragma once

#include "include/platform/GdiPlusTypes.h"
#include "platform/gdiplus/Graphics.h"
#include "platform/gdiplus/ScaleAxis.h"

namespace kx::gdiplus {

// Draws a block of a picture over a block of the target, both in the graphics' coordinates, through the
// matrix if there is one. The picture may lie where the target does. Throws std::bad_alloc and draws nothing
// then.
void DrawPicture(const Target& target, const PixelView& from, Stretch columns, Stretch rows,
                 const Gdiplus::ColorMatrix* pMatrix);

} // namespace kx::gdiplus

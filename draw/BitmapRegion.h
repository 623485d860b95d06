#pragma once

#include "platform/Gdi.h"

namespace kx::draw {

// The region of a bitmap's pixels that are of a colour (`bKeepColor`), or of those that aren't; null for lack
// of memory. The cost is linear in the pixels: the region is built once, of a mask.
HRGN MakeColorRegion(HDC hDC, HBITMAP hBitmap, SIZE size, COLORREF clr, bool bKeepColor);

} // namespace kx::draw

#pragma once

#include "platform/Dc.h"
#include "platform/GdiPlus.h"

namespace kx::draw {

// Draw an image at its own size in rows from the top left of `rc`, as often as covers it; the last ones reach
// past its right and bottom. What can't be seen is passed over, so a huge `rc` costs no more than the
// surface. Nothing for an image without a width or height.
void Pave(const CDC* pDC, Gdiplus::Image& image, const CRect& rc);
void Pave(Gdiplus::Graphics& graphics, Gdiplus::Image& image, const CRect& rc);

} // namespace kx::draw

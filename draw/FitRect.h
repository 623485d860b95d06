#pragma once

#include "platform/Geometry.h"

namespace kx::draw {

// A size reduced to fit into a block, keeping its shape: one side becomes the block's, the other is cut to
// whole pixels. With equal ratios the height is the block's.
CSize ReduceToFit(CSize size, int nWidth, int nHeight);

// The place of a picture of that size within `rc`: in the middle, reduced where it doesn't fit, never
// enlarged.
CRect FitRect(const CRect& rc, CSize size);

} // namespace kx::draw

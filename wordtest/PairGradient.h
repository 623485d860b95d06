#pragma once

#include "platform/Dc.h"

namespace kx::wordtest {

// Marks a pair of letters that differ: one gradient in both cells, from blue in the middle of the right
// letter's upper side to white at the sides of all that the two span.
void PaintPairGradient(CDC& dc, const CRect& rcAnswerCell, const CRect& rcRightCell);

} // namespace kx::wordtest

#pragma once

#include "SkinPainter.h"

namespace client {

// Draws a window's frame with its title and, over what is left, its background; where that is.
CRect PaintFrame(SkinPainter& painter, const CSize& size, const CString& strTitle, bool bActive,
                 bool bMinMaxBox);

// Makes the shape of a window of that size, with its corners cut along the skin's paths.
void MakeWindowRgn(const CKXSkinWndRes& wnd, const CSize& size, CRgn& rgn);

} // namespace client

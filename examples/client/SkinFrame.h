#pragma once

#include "SkinPainter.h"

namespace client {

enum class Boxes
{
    All,
    Usual, // those to close and, where the skin always shows it, to minimise
    Close,
};

// Draws a window's frame with its title and, over what is left, its background; where that is.
CRect PaintFrame(SkinPainter& painter, const CSize& size, const CString& strTitle, bool bActive, Boxes boxes,
                 State close);

// The place of the box that closes a window of that width.
CRect CloseBoxRect(const CKXSkinWndRes& wnd, int nWidth);

// Makes the shape of a window of that size, with its corners cut along the skin's paths.
void MakeWindowRgn(const CKXSkinWndRes& wnd, const CSize& size, CRgn& rgn);

} // namespace client

#pragma once

#include <KXCommonClass.h>

namespace client {

inline constexpr COLORREF clrKey = RGB(255, 0, 255); // the transparent colour of the artwork

// Draw the sheet's pictures into bitmaps, which the taker ends: a button in four states of 30 by 30 side by
// side, a frame of 24 by 24, and a disc of 60 by 60 on the transparent colour.
HBITMAP MakeButtonStates();
HBITMAP MakeFrame();
HBITMAP MakeDisc();
// A landscape of 160 by 100.
HBITMAP MakeLandscape();

} // namespace client

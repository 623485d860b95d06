#pragma once

#include "platform/gdi/Canvas.h"

#include <span>

namespace kx::gdi {

// Fills rectangles of the canvas's surface, which may reach out of it, with one pixel. Throws std::bad_alloc.
void FillRects(const Canvas& canvas, std::span<const RECT> rects, DWORD pixel);

} // namespace kx::gdi

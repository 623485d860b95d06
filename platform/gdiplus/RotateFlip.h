#pragma once

#include "platform/gdiplus/Picture.h"

#include <optional>

namespace kx::gdiplus {

// The pixels turned to the right, then mirrored. Nothing for a lack of memory.
std::optional<gdi::Surface> RotateFlip(const PixelView& from, Gdiplus::RotateFlipType type);

} // namespace kx::gdiplus

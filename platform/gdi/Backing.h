#pragma once

#include "platform/gdi/Surface.h"

#include <utility>

namespace kx::gdi {

// Pixels that are shown on the desktop and shared by those who draw and those who show: a window's, or the
// desktop's own. Guarded by the lock of the desktop's pixels (Screen.h).
struct Backing
{
    explicit Backing(Surface pixels) noexcept : surface(std::move(pixels)) {}
    Surface surface;
};

} // namespace kx::gdi

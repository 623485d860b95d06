#pragma once

#include "platform/gdi/Surface.h"

#include <mutex>
#include <optional>
#include <utility>

namespace kx::gdi {

// The pixels of the desktop, on which windows draw. Made at the first use, never destroyed.
struct Screen
{
    explicit Screen(Surface pixels) noexcept : surface(std::move(pixels)) {}
    static Screen& Instance();

    Surface surface;
    std::recursive_mutex lock; // guards the pixels
};

// What of the desktop the surface of a window covers: all of it for null, nothing for no such window.
std::optional<RECT> AreaOf(HWND hWnd);

} // namespace kx::gdi

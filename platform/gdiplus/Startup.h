#pragma once

#include "include/platform/GdiPlusTypes.h"

#include <new>

namespace kx::gdiplus {

// Whether a start has not been ended yet. Any thread.
bool Started() noexcept;

// Runs a call's body if the layer is started. A lack of memory becomes its status.
template <class Body>
Gdiplus::Status Guarded(Body&& body) noexcept
try {
    return Started() ? body() : Gdiplus::GdiplusNotInitialized;
} catch (const std::bad_alloc&) {
    return Gdiplus::OutOfMemory;
}

} // namespace kx::gdiplus

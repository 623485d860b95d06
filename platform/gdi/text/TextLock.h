#pragma once

#include <mutex>

namespace kx::gdi {

// Held by whoever measures or draws text: FreeType's faces and the glyph caches belong to one thread at a
// time.
std::mutex& TextLock() noexcept;

} // namespace kx::gdi

#pragma once

#include "platform/sync/WordLock.h"

namespace kx::gdi {

// Held by whoever measures or draws text: FreeType's faces and the glyph caches belong to one thread at a
// time.
inline constinit sync::WordLock textLock;

} // namespace kx::gdi

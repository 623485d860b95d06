#pragma once

#include "platform/gdi/BmpHeader.h"

namespace kx::gdi {

// The pixels of an uncompressed bitmap, which `bytes` begins with. Nothing if it holds fewer, or for a bitmap
// too large or with masks that are none.
std::optional<Surface> ReadRows(const BmpHeader& header, FileBytes bytes, const BmpColors& colors);

} // namespace kx::gdi

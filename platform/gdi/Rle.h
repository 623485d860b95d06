#pragma once

#include "platform/gdi/BmpHeader.h"

namespace kx::gdi {

// The pixels of a bitmap compressed with BI_RLE8 or BI_RLE4, whose data `bytes` begins with. Nothing for data
// without their end mark, or so few that the size claimed is not believed.
std::optional<Surface> ReadRle(const BmpHeader& header, FileBytes bytes, const BmpColors& colors);

} // namespace kx::gdi

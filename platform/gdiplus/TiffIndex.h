#pragma once

#include "platform/gdi/ImageFile.h"

#include <cstdint>
#include <vector>

namespace kx::gdiplus {

// Where the pages of a TIFF, classic or BigTIFF, are described: the offsets of those directories, in their
// order, up to the first that is cut, lies over another or whose last pixels lie outside the file. Takes time
// by the file's length alone.
std::vector<std::uint64_t> ReadTiffIndex(gdi::FileBytes file);

} // namespace kx::gdiplus

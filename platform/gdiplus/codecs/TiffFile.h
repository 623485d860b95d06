#pragma once

#include "platform/gdi/ImageFile.h"

#include <cstdint>
#include <memory>
#include <tiffio.h>

namespace kx::gdiplus::codecs {

// A file in memory that the TIFF library reads or, with a target, writes.
struct TiffMemory
{
    gdi::FileBytes bytes;
    std::vector<std::uint8_t>* target = nullptr;
    std::uint64_t at = 0;
};

struct CloseTiff
{
    void operator()(TIFF* p) const noexcept { TIFFClose(p); }
};
using TiffHandle = std::unique_ptr<TIFF, CloseTiff>;

// Opens with mode "r" or "w" and so on; the memory must outlive the handle. Errors and warnings are silent,
// and no single block that it asks for is larger than `nMaxBlock`. Null for what is no TIFF.
TiffHandle OpenTiff(TiffMemory& memory, const char* pszMode, std::int64_t nMaxBlock);

} // namespace kx::gdiplus::codecs

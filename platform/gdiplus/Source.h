#pragma once

#include "include/platform/Stream.h"
#include "platform/gdiplus/Decode.h"

namespace kx::gdiplus {

// A whole file by its path. FileNotFound, AccessDenied; GenericError for what can't be read; OutOfMemory for
// more than MAX_IMAGE_BYTES.
Gdiplus::Status ReadWhole(const WCHAR* pszPath, File& file);
// A stream from its beginning to where it gives no more.
Gdiplus::Status ReadWhole(IStream& stream, File& file);

} // namespace kx::gdiplus

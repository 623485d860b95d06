#pragma once

#include "include/platform/GdiPlusTypes.h"

#include <cstdint>
#include <span>

namespace kx::gdiplus {

// Puts the bytes in a file's place; an old one stays until all of them are written. A link is followed; an
// old file passes its permissions on. FileNotFound for a directory that isn't there, AccessDenied for a file
// or directory that can't be written, GenericError for a full disk.
Gdiplus::Status SaveFile(const WCHAR* pszPath, std::span<const std::uint8_t> bytes);

} // namespace kx::gdiplus

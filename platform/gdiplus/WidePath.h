#pragma once

#include "include/platform/GdiPlusTypes.h"

#include <string>

namespace kx::gdiplus {

// A UTF-16 path as the other families take it, in the code page; empty for null.
std::string ToCodePage(const WCHAR* pszPath);

// The status for an ERROR_... code of a file that can't be opened or made.
Gdiplus::Status StatusOf(DWORD dwError) noexcept;

} // namespace kx::gdiplus

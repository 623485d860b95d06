#pragma once

#include "KXExport.h"
#include "internal/Finding.h"

namespace kx::skin {

// Checks a skin's directory, which ends in a backslash, and tells each finding: `Skin.ini` line by line,
// every file that a skin has, and what else lies there. Ends in bounded time, whatever lies there: it looks
// at 10,000 entries at most. Pictures need Gdiplus::GdiplusStartup.
KX_API void CheckSkin(const CString& strDir, const FindingSink& sink);

} // namespace kx::skin

#pragma once

#include "KXExport.h"

// Sends a printf-style text to the platform's debug channel (platform/Debug.h) in every build. A text of over
// 1,023 bytes is cut there; no line end is added. Returns the number of bytes sent; negative, with nothing
// sent, for a format that can't be carried out. Any thread.
KX_API int KXPrintDebugStr(char const* format, ...) __attribute__((format(printf, 1, 2)));

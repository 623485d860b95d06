#pragma once

#include "platform/Types.h"

// Messages that the library sends to every visible top-level window of the process, by SendMessageA, with
// `wParam` 0 and `lParam` 0, after the new data is complete.
inline constexpr UINT WM_KXSKINCHANGED = 2025; // another skin
inline constexpr UINT WM_KXLANCHANGED = 2026;  // another language

#pragma once

#include "include/platform/Wnd.h"

#include <unordered_map>

namespace kx::framework {

// The objects of this thread that hear their windows' messages.
std::unordered_map<HWND, CWnd*>& Wnds();

} // namespace kx::framework

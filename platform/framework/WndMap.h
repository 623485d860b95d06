#pragma once

#include "include/platform/Wnd.h"
#include "platform/sync/PerThread.h"

#include <unordered_map>

namespace kx::framework {

// The objects of each thread that hear their windows' messages.
sync::PerThread<std::unordered_map<HWND, CWnd*>>& Wnds();

// The calling thread's one for a window; null without one.
CWnd* ObjectOf(HWND hWnd);

} // namespace kx::framework

#pragma once

#include "../KXExport.h"

// Sends a text to the debug channel: to the standard error stream when the environment has KX_DEBUG=1, and
// to every observer of the host (Host.h), in the order in which they were added. No line end is added; null
// counts as the empty text. Any thread; works from static destructors too.
KX_API void OutputDebugStringA(const char* pszText);

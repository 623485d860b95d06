#pragma once

#include "../KXExport.h"

// Sends a text to the debug channel: to the standard error stream when the environment had KX_DEBUG=1 as the
// library was loaded, and to every observer of the host (Host.h), in the order in which they were added. No
// line end is added; null counts as the empty text. On the standard error stream a text is written in one
// piece and at once. Without either a call costs a few nanoseconds. Any thread; works from static destructors
// too.
//
// The library sends diagnostics there as well, a line for each quiet fallback: what was looked for, where,
// and what was taken instead. A line begins with its family: skin, language, picture, xml, http, log,
// window, module, service. KX_DEBUG=1 prints them all, a list of families, as in
// KX_DEBUG=skin,language, their lines and nothing else. An observer hears them if it asked for them.
KX_API void OutputDebugStringA(const char* pszText);

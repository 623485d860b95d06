#pragma once

#include "../KXExport.h"
#include "Types.h"

// The one button, and what it gives.
inline constexpr UINT MB_OK = 0;
inline constexpr int IDOK = 1;

// Shows a message and waits for its answer, above the window of the calling thread that has the focus. The
// thread's other windows are disabled meanwhile; its messages are dispatched, so timers and paints go on.
// Without a desktop to show it on the message is recorded for the host (Host.h), and the result is IDOK at
// once. `pszText` null counts as empty. Any thread.
KX_API int AfxMessageBox(const char* pszText, UINT nType = MB_OK, UINT nHelpId = 0);

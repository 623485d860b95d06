#pragma once

#include "include/platform/Host.h"

namespace kx::window {

// Shows a message in a window of the calling thread in the middle of the desktop, above the others, and waits
// until its button is pressed, by Enter, Space or Escape too, or it is closed. The thread's messages are
// dispatched meanwhile; a WM_QUIT among them ends it and stays the thread's. Gives IDOK, or 0 at once where
// no window can be made.
int RunMessageBox(const KXHost::MessageBoxRecord& box);

} // namespace kx::window

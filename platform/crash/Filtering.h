#pragma once

// The thread that is in the crash filter, if any.

namespace kx::crash {

// Whether the calling thread is: the heap and every lock are then out of bounds.
bool InFilter() noexcept;

// Makes the calling thread the one that is in the filter, once no other is; false if it is already, so that
// its filter has crashed.
bool EnterFilter() noexcept;
void LeaveFilter() noexcept;

// From now on `exit` waits for a filter that runs on another thread: both before what was registered with
// atexit until now, and once more as the last that this library does.
void HoldExits() noexcept;

} // namespace kx::crash

#pragma once

// Which thread is in the crash filter, if any.

namespace kx::crash {

// Whether the calling thread is: the heap and every lock are then out of bounds.
bool InFilter() noexcept;

// Makes the calling thread the one that is in the filter, once no other is; false if it is already, so that
// its filter has crashed.
bool EnterFilter() noexcept;
void LeaveFilter() noexcept;

} // namespace kx::crash

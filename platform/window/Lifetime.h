#pragma once

namespace kx::window {

class Queue;

// Ends the windows of a thread that comes to its end. Their procedures hear nothing of it: what those use may
// be gone by then.
void EndWindowsOf(Queue& owner) noexcept;

} // namespace kx::window

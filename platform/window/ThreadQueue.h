#pragma once

#include "platform/window/Queue.h"

#include <memory>

// Which thread has which queue. A thread gets its queue when it first needs one, and the thread's end ends
// its windows and the queue.

namespace kx::window {

// The calling thread's queue, made now if need be; null when the thread has come to its end.
std::shared_ptr<Queue> ThisThread();

// Whether the queue is the calling thread's. Doesn't make one.
bool IsThisThread(const Queue& queue) noexcept;

// A window of the calling thread, or null with the last error set.
std::shared_ptr<Window> FindOwn(HWND hWnd) noexcept;

// The queue of a thread by its number; null when it has none.
std::shared_ptr<Queue> FindThread(DWORD dwThreadId) noexcept;

} // namespace kx::window

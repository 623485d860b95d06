#pragma once

#include "platform/window/x11/Session.h"

#include <thread>

namespace kx::window::x11 {

// Starts the thread that serves the session's events. It ends with the connection; unless that was wanted, it
// has all windows end then. Throws std::system_error.
std::thread StartEvents(std::shared_ptr<Session> session);

} // namespace kx::window::x11

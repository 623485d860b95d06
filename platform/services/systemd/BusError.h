#pragma once

#include "include/platform/Types.h"

#include <systemd/sd-bus.h>

namespace kx::systemd {

// The platform's error number for a call that failed, by the error's name or else by the errno.
DWORD ErrorFromBus(const sd_bus_error& error, int nErrno) noexcept;

} // namespace kx::systemd

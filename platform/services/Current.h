#pragma once

#include "include/platform/ServiceManager.h"

#include <memory>

namespace kx::services {

// The host's manager, or the machine's. Never null.
std::shared_ptr<KXHost::ServiceManager> CurrentManager();

} // namespace kx::services

#pragma once

#include "include/platform/ServiceManager.h"

namespace kx::services {

// What the module for services gives.
struct Functions
{
    std::shared_ptr<KXHost::ServiceManager> (*makeManager)(const KXHost::SystemdPlace& place);
};

} // namespace kx::services

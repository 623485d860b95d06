#pragma once

#include "include/platform/ServiceManager.h"
#include "platform/LiveHandles.h"

#include <memory>

namespace kx::services {

// What an SC_HANDLE stands for: a manager, or a service of it.
struct Handle
{
    Handle(std::shared_ptr<KXHost::ServiceManager> from, DWORD rights, CString service = {})
        : manager(std::move(from)), access(rights), name(std::move(service))
    {
    }

    const std::shared_ptr<KXHost::ServiceManager> manager;
    const DWORD access;
    const CString name; // empty: the manager itself
    const LiveHandle live;
};
using HandlePtr = std::shared_ptr<const Handle>;

enum class Kind
{
    Manager,
    Service,
};

SC_HANDLE AddHandle(HandlePtr handle);
// Null, with the last error set, for what is no open handle of that kind with that right.
HandlePtr FindHandle(SC_HANDLE handle, Kind kind, DWORD right);
bool RemoveHandle(SC_HANDLE handle);

} // namespace kx::services

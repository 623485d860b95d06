#pragma once

#include "include/platform/Exception.h"
#include "include/platform/ServiceManager.h"
#include "platform/Errno.h"
#include "platform/Handles.h"

#include <memory>
#include <new>

namespace kx::services {

// The functions of the module for services.
struct Functions
{
    std::shared_ptr<KXHost::ServiceManager> (*makeManager)(const KXHost::SystemdPlace& place);
};

// The object of an SC_HANDLE: a manager, or a service of it.
struct Handle
{
    static constexpr HandleKind HANDLE_KIND = HandleKind::Service;

    std::shared_ptr<KXHost::ServiceManager> manager;
    DWORD access;
    CString name; // empty: the manager itself
};

// Makes a call that gives an error number: non-zero on success, with the last error as it was, else 0, with
// it set. What a host's manager throws ends here.
template <class Call>
int Attempt(Call&& call) noexcept
{
    const DWORD before = GetLastError();
    DWORD error = ERROR_GEN_FAILURE;
    try {
        error = call();
    } catch (const std::bad_alloc&) {
        error = ERROR_NOT_ENOUGH_MEMORY;
    } catch (CMemoryException* exception) {
        exception->Delete();
        error = ERROR_NOT_ENOUGH_MEMORY;
    } catch (...) {
    }
    SetLastError(error == ERROR_SUCCESS ? before : error);
    return error == ERROR_SUCCESS;
}

// Attempts a call with what the handle names: a service, or with `bManager` a manager, opened with that
// right.
template <class Call>
int AttemptOn(SC_HANDLE handle, bool bManager, DWORD right, Call&& call) noexcept
{
    return Attempt([&]() -> DWORD {
        const auto found = FindHandle<Handle>(handle);
        if (!found || found->name.IsEmpty() != bManager) return ERROR_INVALID_HANDLE;
        return (found->access & right) == right ? call(*found) : ERROR_ACCESS_DENIED;
    });
}

} // namespace kx::services

#pragma once

#include "platform/Errno.h"

#include <new>
#include <utility>

namespace kx::services {

// Makes a call that gives an error number. Non-zero on success, with the last error as it was; else 0, with
// it set. What a host's manager throws ends here.
template <class Call>
int Attempt(Call&& call)
{
    const DWORD before = GetLastError();
    DWORD error = ERROR_GEN_FAILURE;
    try {
        error = std::forward<Call>(call)();
    } catch (const std::bad_alloc&) {
        error = ERROR_NOT_ENOUGH_MEMORY;
    } catch (...) {
    }
    SetLastError(error == ERROR_SUCCESS ? before : error);
    return error == ERROR_SUCCESS;
}

} // namespace kx::services

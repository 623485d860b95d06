#pragma once

#include "include/KXExport.h"
#include "include/platform/Error.h"

#include <cerrno>
#include <utility>

namespace kx {

// The platform's error number for an errno.
KX_API DWORD ErrorFromErrno(int nErrno) noexcept;

// Sets the last error from errno and gives the failure result of an int operation.
int FailErrno() noexcept;
int Fail(DWORD dwError) noexcept;

// Repeats a system call while a signal interrupts it.
template <class Call>
auto RetryEintr(Call&& call)
{
    decltype(call()) result;
    do
        result = call();
    while (result == -1 && errno == EINTR);
    return result;
}

} // namespace kx

#pragma once

#include "include/KXExport.h"
#include "include/platform/Error.h"

#include <cerrno>

namespace kx {

// The platform's error number for an errno.
KX_API DWORD ErrorFromErrno(int nErrno) noexcept;

// Sets the last error from errno and gives the failure result of an int operation.
int FailErrno() noexcept;
int Fail(DWORD dwError) noexcept;

// 0 of any type: a number, a null pointer.
struct Zero
{
    template <class T>
    constexpr operator T() const noexcept // NOLINT(google-explicit-constructor)
    {
        return T{};
    }
};

// Ends a call that the platform defines as C when memory is short, in its `catch (...)`: takes std::bad_alloc
// and the framework's memory exception, and sets the last error to ERROR_NOT_ENOUGH_MEMORY. Anything else
// goes on.
Zero NoMemory();

// Throws std::bad_alloc when there is little memory left: for before calls of libraries that crash when it
// ends.
KX_API void NeedRoom();

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

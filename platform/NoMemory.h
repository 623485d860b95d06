#pragma once

#include "include/KXExport.h"

namespace kx {

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

} // namespace kx

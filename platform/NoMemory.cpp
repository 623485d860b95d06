// Apart from Errno.cpp, which the crash reporter has without the framework's exceptions.

#include "include/platform/Exception.h"
#include "platform/Errno.h"

#include <cstddef>
#include <new>

kx::Zero kx::NoMemory()
{
    try {
        throw;
    } catch (const std::bad_alloc&) { // told below
    } catch (CMemoryException* exception) {
        exception->Delete();
    }
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return {};
}

void kx::NeedRoom()
{
    constexpr std::size_t kRoom = std::size_t{1} << 20;
    ::operator delete(::operator new(kRoom));
}

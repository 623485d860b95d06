#include "platform/files/ReplaceFile.h"

#include "platform/files/WholeFile.h"

#include <cerrno>

namespace kx {

int ReplaceFile(const std::string& systemPath, const void* pBytes, std::size_t nCount)
{
    switch (ReplaceWholeFile(systemPath, {static_cast<const char*>(pBytes), nCount}, 0666)) {
    case ERROR_SUCCESS:
        return 0;
    case ERROR_PATH_NOT_FOUND:
        return ENOENT;
    case ERROR_DISK_FULL:
        return ENOSPC;
    default:
        return EACCES;
    }
}

} // namespace kx

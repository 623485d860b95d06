#include "platform/Errno.h"

namespace {
// In the threads' static block: a crash filter may set it, and must not be the first to have it allocated.
[[gnu::tls_model("initial-exec")]] constinit thread_local DWORD t_lastError = ERROR_SUCCESS;
} // namespace

DWORD GetLastError() noexcept
{
    return t_lastError;
}

void SetLastError(DWORD dwError) noexcept
{
    t_lastError = dwError;
}

DWORD kx::ErrorFromErrno(int nErrno) noexcept
{
    switch (nErrno) {
    case 0:
        return ERROR_SUCCESS;
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
    case ELOOP:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case EBUSY:
        return ERROR_ACCESS_DENIED;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EMFILE:
    case ENFILE:
        return ERROR_TOO_MANY_OPEN_FILES;
    case EEXIST:
        return ERROR_ALREADY_EXISTS;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ERROR_DISK_FULL;
    case ENOTEMPTY:
        return ERROR_DIR_NOT_EMPTY;
    case ENAMETOOLONG:
        return ERROR_FILENAME_EXCED_RANGE;
    case EWOULDBLOCK:
        return ERROR_SHARING_VIOLATION;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    default:
        return ERROR_GEN_FAILURE;
    }
}

int kx::Fail(DWORD dwError) noexcept
{
    SetLastError(dwError);
    return 0;
}

int kx::FailErrno() noexcept
{
    return Fail(ErrorFromErrno(errno));
}

// GetFileAttributesA, DeleteFileA, CreateDirectoryA, RemoveDirectoryA.

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/files/File.h"
#include "platform/files/Path.h"

#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

struct FoundPath
{
    kx::files::Resolved path;
    DWORD dwAttributes = 0;

    bool Has(DWORD dwAttribute) const { return (dwAttributes & dwAttribute) != 0; }
};

// An existing entry; nothing, with the last error set, where there is none.
std::optional<FoundPath> FindPath(const char* pszPath)
{
    auto path = kx::files::Resolve(pszPath);
    if (!path) return std::nullopt;
    const auto attributes = kx::files::ReadAttributes(path->system);
    if (!attributes) {
        kx::files::FailAt(path->system);
        return std::nullopt;
    }
    return FoundPath{std::move(*path), *attributes};
}

} // namespace

DWORD GetFileAttributesA(const char* pszPath)
try {
    const auto entry = FindPath(pszPath);
    if (entry && (!entry->path.trailing || entry->Has(FILE_ATTRIBUTE_DIRECTORY))) return entry->dwAttributes;
    if (entry) kx::Fail(ERROR_DIRECTORY);
    return INVALID_FILE_ATTRIBUTES;
} catch (...) {
    kx::NoMemory();
    return INVALID_FILE_ATTRIBUTES;
}

int PathFileExistsA(const char* pszPath)
{
    return GetFileAttributesA(pszPath) != INVALID_FILE_ATTRIBUTES;
}

// The platform refuses read-only files to everyone, also to those whom the system would let delete them.
int DeleteFileA(const char* pszPath)
try {
    const auto entry = FindPath(pszPath);
    if (!entry) return 0;
    if (entry->Has(FILE_ATTRIBUTE_DIRECTORY) || entry->Has(FILE_ATTRIBUTE_READONLY))
        return kx::Fail(ERROR_ACCESS_DENIED);
    if (entry->path.trailing) return kx::Fail(ERROR_DIRECTORY);
    return unlink(entry->path.system.c_str()) == 0 || kx::files::FailAt(entry->path.system);
} catch (...) {
    return kx::NoMemory();
}

int CreateDirectoryA(const char* pszPath, void*)
try {
    const auto path = kx::files::Resolve(pszPath);
    if (!path) return 0;
    return mkdir(path->system.c_str(), 0777) == 0 || kx::files::FailAt(path->system);
} catch (...) {
    return kx::NoMemory();
}

int RemoveDirectoryA(const char* pszPath)
try {
    const auto entry = FindPath(pszPath);
    if (!entry) return 0;
    if (!entry->Has(FILE_ATTRIBUTE_DIRECTORY)) return kx::Fail(ERROR_DIRECTORY);
    if (entry->path.root) return kx::Fail(ERROR_ACCESS_DENIED); // a drive keeps its root
    const char* pszSystem = entry->path.system.c_str();
    const bool bGone =
        entry->Has(FILE_ATTRIBUTE_REPARSE_POINT) ? unlink(pszSystem) == 0 : rmdir(pszSystem) == 0;
    if (bGone) return 1;
    return errno == EEXIST ? kx::Fail(ERROR_DIR_NOT_EMPTY) : kx::files::FailAt(entry->path.system);
} catch (...) {
    return kx::NoMemory();
}

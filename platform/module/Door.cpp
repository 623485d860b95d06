#include "platform/module/Door.h"

#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/UniqueFd.h"

#include <array>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace kx::module {

namespace {

std::atomic<bool> g_bShut{false};

// The place that the library was loaded from, whatever the current directory is now.
bool OwnDirectory(std::array<char, PATH_MAX>& directory) noexcept
{
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(&OpenDoor), &info)) return false;
    void* const self = dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    if (!self) return false;
    const bool bFound = dlinfo(self, RTLD_DI_ORIGIN, directory.data()) == 0;
    dlclose(self);
    return bFound;
}

// The loader maps what the headers name, and a file that ends before would be a signal at the first use.
bool IsCut(const char* pszPath) noexcept
{
    const UniqueFd fd(open(pszPath, O_RDONLY | O_CLOEXEC));
    struct stat status;
    ElfW(Ehdr) header;
    if (!fd || fstat(fd.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false; // the loader says it
    if (pread(fd.Get(), &header, sizeof header, 0) != sizeof header) return true;
    if (header.e_phentsize != sizeof(ElfW(Phdr))) return true;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    for (unsigned n = 0; n < header.e_phnum; ++n) {
        ElfW(Phdr) part;
        const auto place = static_cast<off_t>(header.e_phoff + n * sizeof part);
        if (pread(fd.Get(), &part, sizeof part, place) != sizeof part) return true;
        if (part.p_offset > size || part.p_filesz > size - part.p_offset) return true;
    }
    return false;
}

const ModuleEntry* Load(const char* pszName, const char*& pszError) noexcept
{
    std::array<char, PATH_MAX> directory, path;
    std::array<char, 64> entry;
    pszError = "the library's own folder is not known";
    if (!OwnDirectory(directory)) return nullptr;
    const int nLength =
        std::snprintf(path.data(), path.size(), "%s/KXCommonClass/%s.so", directory.data(), pszName);
    if (nLength < 0 || static_cast<std::size_t>(nLength) >= path.size()) return nullptr;
    if (IsCut(path.data())) {
        pszError = "its file is cut off";
        return nullptr;
    }
    try { // a load that memory ends within may leave the loader with a library that never works
        NeedRoom();
    } catch (const std::bad_alloc&) {
        pszError = "memory is short";
        return nullptr;
    }
    dlerror(); // an older failure is none of this one
    void* const module = dlopen(path.data(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    std::snprintf(entry.data(), entry.size(), "kx_module_%s", pszName);
    void* const found = module ? dlsym(module, entry.data()) : nullptr;
    if (!found) pszError = dlerror();
    return static_cast<const ModuleEntry*>(found);
}

} // namespace

const void* OpenDoor(const char* pszName, const ModuleEntry* linked, std::atomic<bool>& told) noexcept
{
    if (!linked && g_bShut) return nullptr;
    const char* pszError = nullptr;
    const ModuleEntry* const entry = linked ? linked : Load(pszName, pszError);
    const bool bOurs = entry && std::strcmp(entry->pszVersion, KX_VERSION) == 0;
    const void* const functions = bOurs ? entry->functions : nullptr;
    if (entry) pszError = "it belongs to another version of the library";
    if (!functions && !told.exchange(true))
        debug::Tell(pszName, "the module can't be used: %s", pszError ? pszError : "the loader says no more");
    return functions;
}

void ShutDoors(bool bShut) noexcept
{
    g_bShut = bShut;
}

} // namespace kx::module

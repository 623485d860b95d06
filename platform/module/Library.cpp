#include "include/platform/Exception.h"
#include "include/platform/Host.h"
#include "include/platform/Module.h"
#include "internal/Debug.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/files/Path.h"
#include "platform/files/WholeFile.h"
#include "platform/module/OpenModule.h"
#include "platform/sync/Fork.h"
#include "platform/sync/Mutex.h"
#include "platform/text/CharWalk.h"

#include <new>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

using kx::module::OpenModule;

namespace {

constinit AFX_MODULE_STATE g_state;

constexpr const char* kLink = "/proc/self/exe";

struct Override
{
    kx::sync::Mutex lock;
    std::string path KX_GUARDED_BY(lock);
};

[[maybe_unused]] const bool g_atFork = kx::sync::LockAtFork(
    kx::sync::ForkOrder::Executable, []() -> kx::sync::Mutex& { return kx::The<Override>().lock; });

bool IsThisExecutable(const std::string& path)
{
    struct stat named
    {
    }, running{};
    return stat(path.c_str(), &named) == 0 && stat(kLink, &running) == 0 && named.st_dev == running.st_dev &&
           named.st_ino == running.st_ino;
}

std::string ReadLink()
{
    constexpr std::size_t kLongest = 1 << 20;
    std::string path;
    for (std::size_t size = 512; size <= kLongest; size *= 2) {
        path.resize(size);
        const ssize_t got = readlink(kLink, path.data(), size);
        if (got <= 0) return {};
        if (static_cast<std::size_t>(got) < size) {
            path.resize(static_cast<std::size_t>(got));
            return path;
        }
    }
    return {};
}

// The system marks the name of an executable that was deleted or replaced while it runs, which a file's own
// name can't be told from but by looking.
std::string RealPath()
{
    constexpr std::string_view kDeleted = " (deleted)";
    std::string path = ReadLink();
    if (path.ends_with(kDeleted) && !IsThisExecutable(path)) path.resize(path.size() - kDeleted.size());
    return path;
}

// The Linux path of the running executable: the host's choice, else the real one. Empty where the system
// doesn't tell. Any thread.
std::string ExecutablePath()
{
    {
        Override& override = kx::The<Override>();
        const kx::sync::MutexLock lock(override.lock);
        if (!override.path.empty()) return override.path;
    }
    return RealPath();
}

} // namespace

AFX_MODULE_STATE* AfxGetModuleState() noexcept
{
    return &g_state;
}

HINSTANCE AfxGetResourceHandle() noexcept
{
    return g_state.m_hCurrentResourceHandle;
}

void AfxSetResourceHandle(HINSTANCE hInstance) noexcept
{
    g_state.m_hCurrentResourceHandle = hInstance;
}

void KXHost::SetExecutablePath(const std::string& strPath)
try {
    Override& override = kx::The<Override>();
    const kx::sync::MutexLock lock(override.lock);
    override.path = strPath;
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

HMODULE LoadLibraryA(const char* pszFileName)
try {
    auto path = kx::files::ToSystem(pszFileName);
    kx::files::FileContent file;
    const DWORD error = path ? kx::files::ReadWholeFile(*path, kx::module::MAX_BUNDLE, file) : GetLastError();
    if (error) {
        SetLastError(error);
        kx::debug::Tell("module", "%s can't be opened; there is no module", pszFileName ? pszFileName : "");
        return nullptr;
    }
    const auto* const bundles = kx::module::Bundles();
    auto bundle = bundles ? bundles->load(std::move(file.bytes)) : nullptr;
    if (bundle)
        return static_cast<HMODULE>(
            kx::AddHandle(std::make_shared<OpenModule>(std::move(bundle), std::move(*path))));
    kx::debug::Tell("module", "%s is no bundle of resources; there is no module", pszFileName);
    SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
    return nullptr;
} catch (...) {
    return kx::NoMemory();
}

int FreeLibrary(HMODULE hModule)
{
    const auto module = kx::RemoveHandle<OpenModule>(hModule);
    if (!module) return kx::Fail(ERROR_INVALID_HANDLE);
    module->Close();
    return 1;
}

DWORD GetModuleFileNameA(HMODULE hModule, char* pszBuffer, DWORD nSize)
try {
    if (!pszBuffer || nSize == 0) return static_cast<DWORD>(kx::Fail(ERROR_INVALID_PARAMETER));
    *pszBuffer = '\0';
    const auto module = OpenModule::Of(hModule);
    if (!module) return static_cast<DWORD>(kx::Fail(ERROR_INVALID_HANDLE));
    const std::string system = hModule ? module->Path() : ExecutablePath();
    if (system.empty()) return static_cast<DWORD>(kx::Fail(ERROR_FILE_NOT_FOUND));
    const auto path = kx::files::FromSystem(system);
    if (!path) return static_cast<DWORD>(kx::Fail(ERROR_INVALID_NAME));
    if (path->size() >= nSize) SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return static_cast<DWORD>(kx::text::CopyCut(*path, pszBuffer, nSize));
} catch (...) {
    return kx::NoMemory();
}

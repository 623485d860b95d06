#include "tests/faults/Faults.h"

#include <cstdarg>
#include <cstddef>
#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>
#include <span>

// Calls of the C library in this program's place, which all libraries of the process find first.

namespace {

std::atomic<bool> g_bArmed{false}, g_bFailed{false};
std::atomic<long> g_calls{0};
std::atomic<pthread_t> g_only{0}; // the thread whose calls fail; 0 for all
faults::Plan g_plan;
std::array<void*, 40> g_frames;
// The code of libraries whose own allocations don't fail lies here.
std::array<std::pair<std::uintptr_t, std::uintptr_t>, 4> g_spared;
std::size_t g_nSpared = 0;
std::atomic<int> g_nFrames{0};

// fontconfig and its parser, which crashes at many of its allocations and never ends at others; and the C
// library's loader, which after a failure may give a library whose names aren't bound, or never load it
// again. In a process that must go on also libtiff, which crashes at some of its own.
int Spare(dl_phdr_info* info, std::size_t, void* pPlan)
{
    const std::string_view name = info->dlpi_name;
    if (name.find("/libfontconfig.") == name.npos && name.find("/libexpat.") == name.npos &&
        name.find("/ld-linux") == name.npos &&
        !(static_cast<const faults::Plan*>(pPlan)->bThread && name.find("/libtiff.") != name.npos))
        return 0;
    for (const auto& part : std::span(info->dlpi_phdr, info->dlpi_phnum))
        if (part.p_type == PT_LOAD && (part.p_flags & PF_X) && g_nSpared < g_spared.size()) {
            const std::uintptr_t begin = info->dlpi_addr + part.p_vaddr;
            g_spared[g_nSpared++] = {begin, begin + part.p_memsz};
        }
    return 0;
}

bool IsSpared(const void* pCaller) noexcept
{
    const auto caller = reinterpret_cast<std::uintptr_t>(pCaller);
    return std::any_of(g_spared.begin(), g_spared.begin() + g_nSpared,
                       [&](const auto& part) { return caller >= part.first && caller < part.second; });
}

bool Fails(faults::Call call, const void* pCaller = nullptr) noexcept
{
    if (!g_bArmed.load(std::memory_order_acquire)) return false;
    const pthread_t only = g_only.load(std::memory_order_relaxed);
    if ((only != 0 && only != pthread_self()) || g_plan.call != call) return false;
    if (pCaller && IsSpared(pCaller)) return false;
    const long n = ++g_calls;
    if (n != g_plan.nth && !(g_plan.bAll && n > g_plan.nth)) return false;
    if (!g_bFailed.exchange(true)) g_nFrames = backtrace(g_frames.data(), static_cast<int>(g_frames.size()));
    errno = g_plan.error;
    return true;
}

template <class Function>
Function* Next(Function*, const char* pszName) noexcept
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, pszName));
}

} // namespace

void faults::Arm(const Plan& plan) noexcept
{
    void* warm[2];
    backtrace(warm, 2); // loads what it needs
    g_nSpared = 0;
    g_only = plan.bThread ? pthread_self() : 0;
    g_plan = plan;
    if (!plan.bBelow) dl_iterate_phdr(Spare, &g_plan);
    g_calls = 0;
    g_bFailed = false;
    g_bArmed.store(true, std::memory_order_release);
}

long faults::Disarm() noexcept
{
    g_bArmed = false;
    return g_calls;
}

faults::Pause::Pause() noexcept : m_bArmed(g_bArmed.exchange(false))
{
}

faults::Pause::~Pause()
{
    g_bArmed = m_bArmed;
}

std::vector<void*> faults::FirstFailure()
{
    return std::vector<void*>(g_frames.begin(), g_frames.begin() + g_nFrames);
}

#define KX_NEXT(name)                                                                                        \
    static auto* const next = Next(&name, #name);                                                            \
    return next

// For the caller of one of the allocator's functions.
#define KX_ALLOCATION_FAILS Fails(faults::Call::Allocate, __builtin_return_address(0))

#pragma GCC visibility push(default) // so that libraries find them
#ifdef KX_SANITIZED                  // whose allocator it is
void* operator new(std::size_t nBytes)
{
    if (void* const p = KX_ALLOCATION_FAILS ? nullptr : std::malloc(nBytes)) return p;
    throw std::bad_alloc();
}
void* operator new(std::size_t nBytes, const std::nothrow_t&) noexcept
{
    return KX_ALLOCATION_FAILS ? nullptr : std::malloc(nBytes);
}
void operator delete(void* p) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}
extern "C" {
#else
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);

void* malloc(std::size_t nBytes) noexcept
{
    return KX_ALLOCATION_FAILS ? nullptr : __libc_malloc(nBytes);
}
void* calloc(std::size_t nCount, std::size_t nBytes) noexcept
{
    return KX_ALLOCATION_FAILS ? nullptr : __libc_calloc(nCount, nBytes);
}
void* realloc(void* p, std::size_t nBytes) noexcept
{
    return KX_ALLOCATION_FAILS ? nullptr : __libc_realloc(p, nBytes);
}
void* aligned_alloc(std::size_t nAlign, std::size_t nBytes) noexcept
{
    return KX_ALLOCATION_FAILS ? nullptr : __libc_memalign(nAlign, nBytes);
}
char* strdup(const char* psz) noexcept // the C library's own would be malloc's caller
{
    const std::size_t nBytes = std::strlen(psz) + 1;
    void* const p = KX_ALLOCATION_FAILS ? nullptr : __libc_malloc(nBytes);
    return p ? static_cast<char*>(std::memcpy(p, psz, nBytes)) : nullptr;
}
int posix_memalign(void** pp, std::size_t nAlign, std::size_t nBytes) noexcept
{
    void* const p = KX_ALLOCATION_FAILS ? nullptr : __libc_memalign(nAlign, nBytes);
    if (p) *pp = p;
    return p ? 0 : ENOMEM;
}
#endif

// With O_TMPFILE or O_CREAT there is a mode.
#define KX_OPEN(name, parameters, directory)                                                                 \
    int name parameters                                                                                      \
    {                                                                                                        \
        mode_t mode = 0;                                                                                     \
        if (flags & (O_CREAT | __O_TMPFILE)) {                                                               \
            va_list args;                                                                                    \
            va_start(args, flags);                                                                           \
            mode = va_arg(args, mode_t);                                                                     \
            va_end(args);                                                                                    \
        }                                                                                                    \
        if (Fails(faults::Call::Open)) return -1;                                                            \
        KX_NEXT(openat64)(directory, pszPath, flags, mode);                                                  \
    }
KX_OPEN(open, (const char* pszPath, int flags, ...), AT_FDCWD)
KX_OPEN(open64, (const char* pszPath, int flags, ...), AT_FDCWD)
KX_OPEN(openat, (int fd, const char* pszPath, int flags, ...), fd)
KX_OPEN(openat64, (int fd, const char* pszPath, int flags, ...), fd)

// A call that writes `count` of something, or a part of it.
#define KX_WRITE(name, parameters, count, part, ...)                                                         \
    ssize_t name parameters                                                                                  \
    {                                                                                                        \
        if (Fails(faults::Call::Write)) {                                                                    \
            if (!g_plan.bShort) return -1;                                                                   \
            count = part;                                                                                    \
        }                                                                                                    \
        KX_NEXT(name)(__VA_ARGS__);                                                                          \
    }
KX_WRITE(write, (int fd, const void* p, std::size_t n), n, n / 2 + n % 2, fd, p, n)
KX_WRITE(pwrite, (int fd, const void* p, std::size_t n, off_t at), n, n / 2 + n % 2, fd, p, n, at)
KX_WRITE(copy_file_range, (int from, off64_t* pFrom, int to, off64_t* pTo, std::size_t n, unsigned flags), n,
         n / 2 + n % 2, from, pFrom, to, pTo, n, flags)

#define KX_CALL(kind, name, parameters, ...)                                                                 \
    int name parameters                                                                                      \
    {                                                                                                        \
        if (Fails(faults::Call::kind)) return -1;                                                            \
        KX_NEXT(name)(__VA_ARGS__);                                                                          \
    }
KX_CALL(Sync, fsync, (int fd), fd)
KX_CALL(Sync, fdatasync, (int fd), fd)
KX_CALL(Rename, rename, (const char* pszFrom, const char* pszTo) noexcept, pszFrom, pszTo)
KX_CALL(Rename, renameat, (int from, const char* pszFrom, int to, const char* pszTo) noexcept, from, pszFrom,
        to, pszTo)
KX_CALL(Rename, renameat2,
        (int from, const char* pszFrom, int to, const char* pszTo, unsigned flags) noexcept, from, pszFrom,
        to, pszTo, flags)
KX_CALL(Rename, linkat, (int from, const char* pszFrom, int to, const char* pszTo, int flags) noexcept, from,
        pszFrom, to, pszTo, flags)
}

#pragma GCC visibility pop

#pragma once

#include "tests/support/Standard.h"

#include <cstddef>
#include <new>

// The allocator of a child program and of all libraries in it, which can be short of memory; for the one file
// of such a program. A sanitizer has an allocator of its own: there only operator new fails, and no block is
// counted.
namespace shortage {

inline std::atomic<long> g_nLeft{-1};  // allocations until one fails; below 0: none does
inline std::atomic<long> g_nFailed{0}; // so many did
inline std::atomic<long> g_nLive{0};   // blocks
inline std::size_t g_nMost = SIZE_MAX; // bytes that a block may have

inline bool Fails(std::size_t nBytes) noexcept
{
    bool bFails = nBytes > g_nMost;
    for (long n = g_nLeft; n >= 0;)
        if (g_nLeft.compare_exchange_weak(n, n > 0 ? n - 1 : -1)) {
            bFails |= n == 0;
            break;
        }
    if (!bFails) return false;
    ++g_nFailed;
    errno = ENOMEM;
    return true;
}

inline void* Counted(void* block) noexcept
{
    if (block) ++g_nLive;
    return block;
}

} // namespace shortage

#if !defined(KX_SANITIZED)
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t nBytes) noexcept
{
    return shortage::Fails(nBytes) ? nullptr : shortage::Counted(__libc_malloc(nBytes));
}
void* calloc(std::size_t nCount, std::size_t nBytes) noexcept
{
    return shortage::Fails(nCount * nBytes) ? nullptr : shortage::Counted(__libc_calloc(nCount, nBytes));
}
void* realloc(void* block, std::size_t nBytes) noexcept
{
    if (shortage::Fails(nBytes)) return nullptr;
    return block ? __libc_realloc(block, nBytes) : shortage::Counted(__libc_realloc(block, nBytes));
}
void free(void* block) noexcept
{
    if (block) --shortage::g_nLive;
    __libc_free(block);
}
}
#else
void* operator new(std::size_t nBytes, const std::nothrow_t&) noexcept
{
    return shortage::Fails(nBytes) ? nullptr : std::malloc(nBytes ? nBytes : 1);
}
void* operator new(std::size_t nBytes)
{
    void* const p = operator new(nBytes, std::nothrow);
    if (!p) throw std::bad_alloc();
    return p;
}
void operator delete(void* p) noexcept
{
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}
#endif

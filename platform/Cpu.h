#pragma once

// A function marked KX_AVX2 is compiled for processors with AVX2 and called where HasAvx2() says so;
// elsewhere it is one like any other, and never called.
#if defined(__x86_64__)
#define KX_AVX2 [[gnu::target("avx2")]]
#else
#define KX_AVX2
#endif

namespace kx {

inline bool HasAvx2() noexcept
{
#if defined(__x86_64__)
    static const bool bHas = __builtin_cpu_supports("avx2") != 0;
    return bHas;
#else
    return false;
#endif
}

} // namespace kx

#include "platform/gdi/Copies.h"

#include <optional>
#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace kx::gdi {

namespace {

struct KeyedRows
{
    DWORD* out;
    std::ptrdiff_t outStride;
    const DWORD* in;
    std::ptrdiff_t inStride;
    int width;
    int height;
    DWORD key; // without a high byte
};

// Chooses between two pixels without a branch, so that it is compiled into vector instructions and costs the
// same for any picture.
void SelectRow(DWORD* __restrict out, const DWORD* __restrict in, int nWidth, DWORD key) noexcept
{
    for (int x = 0; x < nWidth; ++x)
        out[x] = (in[x] & COLOR_BITS) == key ? out[x] : in[x];
}

void SelectPlain(const KeyedRows& rows) noexcept
{
    for (int y = 0; y < rows.height; ++y)
        SelectRow(rows.out + y * rows.outStride, rows.in + y * rows.inStride, rows.width, rows.key);
}

#if defined(__x86_64__)
// A step is as wide as a line of the cache. Most of the key surrounds a picture: a line that it fills whole
// costs no access to the target.
[[gnu::target("avx2")]] void SelectAvx2(const KeyedRows& rows) noexcept
{
    constexpr int kHalf = 8, kLine = 2 * kHalf;
    const auto at = [](const DWORD* p) { return reinterpret_cast<const __m256i*>(p); };
    const __m256i bits = _mm256_set1_epi32(COLOR_BITS);
    const __m256i key = _mm256_set1_epi32(static_cast<int>(rows.key));
    for (int y = 0; y < rows.height; ++y) {
        DWORD* const out = rows.out + y * rows.outStride;
        const DWORD* const in = rows.in + y * rows.inStride;
        int x = 0;
        for (; x + kLine <= rows.width; x += kLine) {
            const __m256i first = _mm256_loadu_si256(at(in + x));
            const __m256i second = _mm256_loadu_si256(at(in + x + kHalf));
            const __m256i keepFirst = _mm256_cmpeq_epi32(_mm256_and_si256(first, bits), key);
            const __m256i keepSecond = _mm256_cmpeq_epi32(_mm256_and_si256(second, bits), key);
            if (_mm256_movemask_epi8(_mm256_and_si256(keepFirst, keepSecond)) == -1) continue;
            auto* const to = reinterpret_cast<__m256i*>(out + x);
            _mm256_storeu_si256(to, _mm256_blendv_epi8(first, _mm256_loadu_si256(to), keepFirst));
            _mm256_storeu_si256(to + 1, _mm256_blendv_epi8(second, _mm256_loadu_si256(to + 1), keepSecond));
        }
        SelectRow(out + x, in + x, rows.width - x, rows.key);
    }
}

const auto g_select = __builtin_cpu_supports("avx2") ? SelectAvx2 : SelectPlain;
#else
constexpr auto g_select = SelectPlain;
#endif

} // namespace

void CopyKeyedBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc, DWORD key)
{
    const Fit fit = FitBlock(to, block, from, xSrc, ySrc);
    if (IsEmpty(fit.area)) return;
    const RECT source = Moved(fit.area, -fit.dx, -fit.dy);
    // A copy that meets its own source reads a snapshot, whose first pixel is the source's first.
    std::optional<Surface> snapshot;
    if (&to.surface == &from.surface && !IsEmpty(Cut(source, fit.area)))
        snapshot = Snapshot(from.surface, source);
    const Surface& surface = snapshot ? *snapshot : from.surface;
    const int dx = snapshot ? fit.area.left : fit.dx;
    const int dy = snapshot ? fit.area.top : fit.dy;
    ForEachPart(to.clip, fit.area, [&](const RECT& part) {
        g_select({to.surface.Row(part.top) + part.left, to.surface.Stride(),
                  surface.Row(part.top - dy) + part.left - dx, surface.Stride(), part.right - part.left,
                  part.bottom - part.top, key});
    });
}

} // namespace kx::gdi

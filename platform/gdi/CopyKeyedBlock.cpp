#include "platform/gdi/Copies.h"

#include <optional>

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
    DWORD key;
};

// Chooses between two pixels without a branch, so that it is compiled into vector instructions and costs the
// same for any picture.
[[gnu::always_inline]] inline void Select(const KeyedRows& rows) noexcept
{
    const DWORD key = rows.key & COLOR_BITS;
    const int nWidth = rows.width;
    for (int y = 0; y < rows.height; ++y) {
        DWORD* __restrict out = rows.out + y * rows.outStride;
        const DWORD* __restrict in = rows.in + y * rows.inStride;
        for (int x = 0; x < nWidth; ++x)
            out[x] = (in[x] & COLOR_BITS) == key ? out[x] : in[x];
    }
}

void SelectPlain(const KeyedRows& rows) noexcept
{
    Select(rows);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] void SelectAvx2(const KeyedRows& rows) noexcept
{
    Select(rows);
}

void SelectRows(const KeyedRows& rows) noexcept
{
    static const bool bAvx2 = __builtin_cpu_supports("avx2") != 0;
    bAvx2 ? SelectAvx2(rows) : SelectPlain(rows);
}
#else
void SelectRows(const KeyedRows& rows) noexcept
{
    SelectPlain(rows);
}
#endif

} // namespace

void CopyKeyedBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc, DWORD key)
{
    const Fit fit = FitBlock(to, block, from, xSrc, ySrc);
    if (IsEmpty(fit.area)) return;
    const RECT source = Moved(fit.area, -fit.dx, -fit.dy);
    // Where a copy meets its own source, it reads a snapshot, the first pixel of which is the source's first.
    std::optional<Surface> snapshot;
    if (&to.surface == &from.surface && !IsEmpty(Cut(source, fit.area)))
        snapshot = Snapshot(from.surface, source);
    const Surface& surface = snapshot ? *snapshot : from.surface;
    const int dx = snapshot ? fit.area.left : fit.dx;
    const int dy = snapshot ? fit.area.top : fit.dy;
    for (const RECT& clip : to.clip) {
        const RECT part = Cut(fit.area, clip);
        if (IsEmpty(part)) continue;
        SelectRows({to.surface.Row(part.top) + part.left, to.surface.Stride(),
                    surface.Row(part.top - dy) + part.left - dx, surface.Stride(), part.right - part.left,
                    part.bottom - part.top, key});
    }
}

} // namespace kx::gdi

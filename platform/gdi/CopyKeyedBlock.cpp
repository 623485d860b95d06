#include "platform/gdi/Copies.h"

#include <optional>

namespace kx::gdi {

namespace {

// Chooses between two pixels without a branch, so that it is compiled into vector instructions and costs the
// same for any picture. The key has no high byte.
void SelectRow(DWORD* __restrict out, const DWORD* __restrict in, int nWidth, DWORD key) noexcept
{
    for (int x = 0; x < nWidth; ++x)
        out[x] = (in[x] & COLOR_BITS) == key ? out[x] : in[x];
}

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
        for (int y = part.top; y < part.bottom; ++y)
            SelectRow(to.surface.Row(y) + part.left, surface.Row(y - dy) + part.left - dx,
                      part.right - part.left, key);
    });
}

} // namespace kx::gdi

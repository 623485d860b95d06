#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/Fill.h"

#include <cmath>
#include <cstdlib>
#include <new>
#include <utility>
#include <vector>

using namespace kx::gdi;

namespace {

__extension__ using Wide = unsigned __int128; // for products of two distances

// A line seen along its longer side: `length` pixels in steps of 1 or -1, each of them across at the pixel
// that is nearest to the ideal line, the greater of two at the same distance, so that a line is the same both
// ways.
struct Slope
{
    std::int64_t along; // where it begins
    std::int64_t across;
    std::int64_t length;
    std::int64_t rise; // across, over the whole length; at most as long
    int stepAlong;
    int stepAcross;
};

Slope MakeSlope(std::int64_t along, std::int64_t across, std::int64_t nAlong, std::int64_t nAcross)
{
    return {along, across, std::abs(nAlong), std::abs(nAcross), nAlong < 0 ? -1 : 1, nAcross < 0 ? -1 : 1};
}

// The pixels within `first` to `end` along, gathered into runs that lie at one place across, and each widened
// across to `nWidth`. `add(begin, end, top, bottom)` takes a run: from where to where it goes along, and
// across.
template <class Add>
void ForEachRun(const Slope& slope, std::int64_t first, std::int64_t end, std::int64_t nWidth, Add&& add)
{
    const auto [begin, limit] = slope.stepAlong > 0
                                    ? std::pair(first - slope.along, end - slope.along)
                                    : std::pair(slope.along - end + 1, slope.along - first + 1);
    const std::int64_t nBegin = std::max<std::int64_t>(begin, 0);
    const std::int64_t nEnd = std::min(limit, slope.length);
    const auto nTwice = static_cast<std::uint64_t>(2 * slope.length);
    const auto emit = [&](std::int64_t nFrom, std::int64_t nTo, std::int64_t nRisen) {
        const std::int64_t a = slope.along + slope.stepAlong * nFrom;
        const std::int64_t b = slope.along + slope.stepAlong * (nTo - 1);
        const std::int64_t top = slope.across + slope.stepAcross * nRisen - (nWidth - 1) / 2;
        add(std::min(a, b), std::max(a, b) + 1, top, top + nWidth);
    };
    if (nBegin >= nEnd) return;
    const auto nHalf = static_cast<std::uint64_t>(slope.stepAcross > 0 ? slope.length : slope.length - 1);
    const Wide nStart =
        Wide(static_cast<std::uint64_t>(nBegin)) * static_cast<std::uint64_t>(2 * slope.rise) + nHalf;
    auto nRisen = static_cast<std::int64_t>(nStart / nTwice);
    auto nRest = static_cast<std::uint64_t>(nStart % nTwice);
    std::int64_t nRun = nBegin;
    for (std::int64_t n = nBegin + 1; n < nEnd; ++n) {
        nRest += static_cast<std::uint64_t>(2 * slope.rise);
        if (nRest < nTwice) continue;
        nRest -= nTwice;
        emit(nRun, n, nRisen++);
        nRun = n;
    }
    emit(nRun, nEnd, nRisen);
}

void DrawLine(const Canvas& canvas, POINT from, POINT to, const Pen& pen)
{
    const std::int64_t dx = std::int64_t{to.x} - from.x;
    const std::int64_t dy = std::int64_t{to.y} - from.y;
    const bool bFlat = std::abs(dx) >= std::abs(dy);
    const Slope slope = bFlat ? MakeSlope(from.x, from.y, dx, dy) : MakeSlope(from.y, from.x, dy, dx);
    if (slope.length == 0) return;
    // Across a sloping line there is more of it than its width.
    const double fLean = std::hypot(1.0, static_cast<double>(slope.rise) / static_cast<double>(slope.length));
    const std::int64_t nWidth = pen.width > 1 ? std::llround(pen.width * fLean) : 1;
    std::vector<RECT> runs;
    const RECT& bounds = canvas.bounds;
    ForEachRun(slope, bFlat ? bounds.left : bounds.top, bFlat ? bounds.right : bounds.bottom, nWidth,
               [&](std::int64_t begin, std::int64_t end, std::int64_t top, std::int64_t bottom) {
                   const RECT run = bFlat ? RECT{ToSide(begin), ToSide(top), ToSide(end), ToSide(bottom)}
                                          : RECT{ToSide(top), ToSide(begin), ToSide(bottom), ToSide(end)};
                   if (!IsEmpty(Cut(run, bounds))) runs.push_back(run);
               });
    FillRects(canvas, runs, ToPixel(pen.color));
}

} // namespace

int MoveToEx(HDC hDC, int x, int y, POINT* pOld)
{
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context) return 0;
    const POINT old = std::exchange(context->position, POINT{x, y});
    if (pOld) *pOld = old;
    return 1;
}

int LineTo(HDC hDC, int x, int y)
try {
    const auto context = FindAs<DeviceContext>(hDC);
    if (!context) return 0;
    const Pen& pen = context->CurrentPen();
    if (pen.Draws()) DrawLine(context->Paint(), context->position, {x, y}, pen);
    context->position = {x, y};
    return 1;
} catch (const std::bad_alloc&) {
    return 0;
}

#include "draw/FitRect.h"

#include "internal/Wrap.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

// How many times a side goes into its room, rounded to a float: clients lay out by the exact pixels.
float Ratio(float side, int nRoom)
{
    if (nRoom == 0) return std::numeric_limits<float>::infinity();
    return static_cast<float>(static_cast<double>(side) / nRoom);
}

int Reduce(float side, float ratio)
{
    if (ratio == 0) return 0;
    using Limits = std::numeric_limits<int>;
    const double reduced = static_cast<double>(side) / static_cast<double>(ratio);
    return static_cast<int>(std::clamp<double>(reduced, Limits::min(), Limits::max()));
}

// Half of what a side leaves free of its room, which may be less than nothing.
int HalfGap(int nRoom, int nSide)
{
    return static_cast<int>((std::int64_t{nRoom} - nSide) / 2);
}

} // namespace

CSize kx::draw::ReduceToFit(CSize size, int nWidth, int nHeight)
{
    const auto width = static_cast<float>(size.cx);
    const auto height = static_cast<float>(size.cy);
    const float a = Ratio(width, nWidth);
    const float b = Ratio(height, nHeight);
    return b >= a ? CSize(Reduce(width, b), nHeight) : CSize(nWidth, Reduce(height, a));
}

CRect kx::draw::FitRect(const CRect& rc, CSize size)
{
    const int W = rc.Width();
    const int H = rc.Height();
    if (size.cx > W || size.cy > H) size = ReduceToFit(size, W, H);
    const int left = Plus(rc.left, HalfGap(W, size.cx));
    const int top = Plus(rc.top, HalfGap(H, size.cy));
    return {left, top, Plus(left, size.cx), Plus(top, size.cy)};
}

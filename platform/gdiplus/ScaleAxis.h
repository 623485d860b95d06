#pragma once

#include <cstddef>
#include <vector>

namespace kx::gdiplus {

// One direction of a picture's block stretched over a block of a target, in pixels of each. A negative length
// reaches to the other side of its beginning, and mirrors.
struct Stretch
{
    double from;
    double fromLength;
    double to;
    double toLength;
};

// The pixels of the picture that one of the target is made of: the first and the last one by their weights,
// those between by 1.
struct Span
{
    int first;
    int last; // at least `first`; where they are equal only `firstWeight` counts
    float firstWeight;
    float lastWeight;
    float sum; // of all weights
};

// The spans of a run of the target's pixels.
class Axis
{
public:
    // For those from `begin` to `end` whose centres the picture's pixels 0 to `limit` cover. Throws
    // std::bad_alloc.
    Axis(const Stretch& stretch, int limit, int begin, int end);

    int Begin() const noexcept { return m_nBegin; }
    int End() const noexcept { return m_nBegin + static_cast<int>(m_spans.size()); }
    const Span& operator[](int n) const noexcept { return m_spans[static_cast<std::size_t>(n - m_nBegin)]; }
    const std::vector<Span>& Spans() const noexcept { return m_spans; }

private:
    int m_nBegin;
    std::vector<Span> m_spans;
};

} // namespace kx::gdiplus

#include "platform/gdiplus/Scale.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kx::gdiplus {

namespace {

// A stretch with positive lengths.
class Mapping
{
public:
    explicit Mapping(const Stretch& stretch) noexcept
        : m_from(std::min(stretch.from, stretch.from + stretch.fromLength)),
          m_fromLength(std::abs(stretch.fromLength)),
          m_to(std::min(stretch.to, stretch.to + stretch.toLength)),
          m_toLength(std::abs(stretch.toLength)),
          m_mirrored((stretch.fromLength < 0) != (stretch.toLength < 0))
    {
    }

    bool IsEmpty() const noexcept { return !(m_fromLength > 0 && m_toLength > 0); }
    bool Reduces() const noexcept { return m_fromLength > m_toLength; }
    double From() const noexcept { return m_from; }
    double FromEnd() const noexcept { return m_from + m_fromLength; }
    double To() const noexcept { return m_to; }
    double ToEnd() const noexcept { return m_to + m_toLength; }
    // Multiplied first, so that positions that are whole come out whole.
    double Source(double to) const noexcept
    {
        const double distance = m_mirrored ? ToEnd() - to : to - m_to;
        return m_from + distance * m_fromLength / m_toLength;
    }
    double Target(double from) const noexcept
    {
        const double distance = (from - m_from) * m_toLength / m_fromLength;
        return m_mirrored ? ToEnd() - distance : m_to + distance;
    }

private:
    double m_from;
    double m_fromLength;
    double m_to;
    double m_toLength;
    bool m_mirrored;
};

Span OnePixel(int n) noexcept
{
    return {n, n, 1, 0, 1};
}

// All pixels from `begin` to `end`, by how much of each lies between.
Span MeanOf(double begin, double end, int nLeast, int nMost) noexcept
{
    const int nFirst = std::clamp(static_cast<int>(std::floor(begin)), nLeast, nMost);
    const int nLast = std::clamp(static_cast<int>(std::ceil(end)) - 1, nFirst, nMost);
    if (nFirst == nLast) return OnePixel(nFirst);
    const double first = nFirst + 1 - begin;
    const double last = end - nLast;
    return {nFirst, nLast, static_cast<float>(first), static_cast<float>(last),
            static_cast<float>(first + (nLast - nFirst - 1) + last)};
}

// Between the two pixels whose centres lie around a position.
Span Between(double position, int nLeast, int nMost) noexcept
{
    const double below = std::floor(position - 0.5);
    const double part = position - 0.5 - below;
    const int nFirst = std::clamp(static_cast<int>(below), nLeast, nMost);
    const int nLast = std::clamp(static_cast<int>(below) + 1, nLeast, nMost);
    if (nFirst == nLast || part == 0) return OnePixel(nFirst);
    return {nFirst, nLast, static_cast<float>(1 - part), static_cast<float>(part), 1};
}

// The first pixel whose centre doesn't lie before a position.
int PixelAt(double position, int nLeast, int nMost) noexcept
{
    return static_cast<int>(std::clamp<double>(std::ceil(position - 0.5), nLeast, nMost));
}

} // namespace

Axis::Axis(const Stretch& stretch, int limit, int begin, int end) : m_nBegin(begin)
{
    const Mapping map(stretch);
    if (map.IsEmpty() || begin >= end) return;
    // What there is to read.
    const double least = std::max(map.From(), 0.0);
    const double most = std::min(map.FromEnd(), static_cast<double>(limit));
    if (!(least < most)) return;
    const int nLeast = static_cast<int>(std::floor(least));
    const int nMost = static_cast<int>(std::ceil(most)) - 1;

    const auto [low, high] = std::minmax({map.Target(least), map.Target(most)});
    m_nBegin = PixelAt(std::max(low, map.To()), begin, end);
    const int nEnd = PixelAt(std::min(high, map.ToEnd()), m_nBegin, end);
    m_spans.reserve(static_cast<std::size_t>(nEnd - m_nBegin));
    for (int n = m_nBegin; n < nEnd; ++n) {
        const auto [first, last] = std::minmax({map.Source(n), map.Source(n + 1.0)});
        m_spans.push_back(map.Reduces()
                              ? MeanOf(std::max(first, least), std::min(last, most), nLeast, nMost)
                              : Between(std::clamp(map.Source(n + 0.5), least, most), nLeast, nMost));
    }
}

} // namespace kx::gdiplus

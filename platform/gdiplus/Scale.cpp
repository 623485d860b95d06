#include "platform/gdiplus/Scale.h"

#include "platform/gdi/Rect.h"

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
    if (nFirst == nLast) return OnePixel(nFirst);
    return {nFirst, nLast, static_cast<float>(1 - part), static_cast<float>(part), 1};
}

// The first pixel whose centre doesn't lie before a position.
int PixelAt(double position, int nLeast, int nMost) noexcept
{
    return static_cast<int>(std::clamp<double>(std::ceil(position - 0.5), nLeast, nMost));
}

// A pixel as what may be summed: colours by their alpha, alphas as they are.
template <Alpha alpha>
[[gnu::always_inline]] inline Quad Load(DWORD pixel) noexcept
{
    const Quad quad = ToQuad(pixel);
    if constexpr (alpha != Alpha::Straight) return quad;
    return quad * __builtin_shufflevector(quad, Fill(1), 3, 3, 3, 4);
}

template <Alpha alpha>
[[gnu::always_inline]] inline Quad SumOf(const DWORD* in, const Span& span) noexcept
{
    Quad sum = span.firstWeight * Load<alpha>(in[span.first]);
    if (span.last == span.first) return sum;
    for (int n = span.first + 1; n < span.last; ++n)
        sum += Load<alpha>(in[n]);
    return sum + span.lastWeight * Load<alpha>(in[span.last]);
}

template <Alpha alpha>
void SumAcross(const DWORD* in, const std::vector<Span>& columns, Quad* out) noexcept
{
    for (const Span& span : columns)
        *out++ = SumOf<alpha>(in, span);
}

// The pixel of a sum over pixels whose weights have a sum too.
template <Alpha alpha>
[[gnu::always_inline]] inline DWORD Mean(const Quad& sum, float weight) noexcept
{
    if constexpr (alpha == Alpha::Opaque) return ToPixel(sum / Fill(weight)) | ALPHA_BITS;
    const float opacity = sum[3];
    if (opacity + opacity < weight) return 0; // rounds to none
    return ToPixel(sum / Quad{opacity, opacity, opacity, weight});
}

template <Alpha alpha>
void Means(const Quad* in, const std::vector<Span>& columns, float rows, DWORD* out) noexcept
{
    for (const Span& span : columns)
        *out++ = Mean<alpha>(*in++, span.sum * rows);
}

// Positions beyond this are as far from any pixel as these.
constexpr double farAway = 1e12;

// How far the pixels of a stretch that is none are moved, a whole number of them; nothing for another.
std::optional<std::int64_t> Shift(const Stretch& stretch) noexcept
{
    const double shift = stretch.to - stretch.from;
    if (stretch.fromLength != stretch.toLength || shift != std::floor(shift) || std::abs(shift) > farAway)
        return std::nullopt;
    return static_cast<std::int64_t>(shift);
}

// The target's pixels whose centres a block covers.
std::pair<int, int> Covered(const Stretch& stretch) noexcept
{
    const auto pixelAt = [](double position) {
        return gdi::ToSide(
            static_cast<std::int64_t>(std::clamp(std::ceil(position - 0.5), -farAway, farAway)));
    };
    const auto [begin, end] = std::minmax({stretch.to, stretch.to + stretch.toLength});
    return {pixelAt(begin), pixelAt(end)};
}

} // namespace

Axis::Axis(const Stretch& stretch, int limit, int begin, int end) : m_nBegin(begin)
{
    const Mapping map(stretch);
    if (map.IsEmpty() || begin >= end) return;
    // The part that there is to read.
    const double least = std::max(map.From(), 0.0);
    const double most = std::min(map.FromEnd(), static_cast<double>(limit));
    if (!(least < most)) return;
    const int nLeast = static_cast<int>(std::floor(least));
    const int nMost = static_cast<int>(std::ceil(most)) - 1;

    const auto [low, high] = std::minmax({map.Target(least), map.Target(most)});
    m_nBegin = PixelAt(std::max(low, map.To()), begin, end);
    const int nEnd = PixelAt(std::min(high, map.ToEnd()), m_nBegin, end);
    for (int n = m_nBegin; n < nEnd; ++n) {
        const auto [first, last] = std::minmax({map.Source(n), map.Source(n + 1.0)});
        m_spans.push_back(map.Reduces()
                              ? MeanOf(std::max(first, least), std::min(last, most), nLeast, nMost)
                              : Between(std::clamp(map.Source(n + 0.5), least, most), nLeast, nMost));
    }
}

Scaler::Scaler(const PixelView& from, const Stretch& columns, const Stretch& rows, const RECT& area)
    : m_from(from),
      m_columns(columns, from.width, area.left, area.right),
      m_rows(rows, from.height, area.top, area.bottom)
{
    const std::size_t nColumns = m_columns.Spans().size();
    for (Held& held : m_held)
        held.quads.resize(nColumns);
    m_sum.resize(nColumns);
}

RECT Scaler::Area() const noexcept
{
    return {m_columns.Begin(), m_rows.Begin(), m_columns.End(), m_rows.End()};
}

const Quad* Scaler::Across(int nRow) noexcept
{
    Held& held = m_held[static_cast<std::size_t>(nRow) % m_held.size()];
    if (held.row == nRow) return held.quads.data();
    held.row = nRow;
    Quad* out = held.quads.data();
    if (m_from.alpha == Alpha::Opaque)
        SumAcross<Alpha::Opaque>(m_from.Row(nRow), m_columns.Spans(), out);
    else
        SumAcross<Alpha::Straight>(m_from.Row(nRow), m_columns.Spans(), out);
    return out;
}

void Scaler::Sum(const Span& span) noexcept
{
    const auto nColumns = static_cast<std::ptrdiff_t>(m_sum.size());
    Quad* sum = m_sum.data();
    const Quad* row = Across(span.first);
    for (std::ptrdiff_t x = 0; x < nColumns; ++x)
        sum[x] = span.firstWeight * row[x];
    for (int n = span.first + 1; n <= span.last; ++n) {
        const float weight = n < span.last ? 1 : span.lastWeight;
        row = Across(n);
        for (std::ptrdiff_t x = 0; x < nColumns; ++x)
            sum[x] += weight * row[x];
    }
}

void Scaler::Row(int y, DWORD* out) noexcept
{
    const Span& span = m_rows[y];
    Sum(span);
    if (m_from.alpha == Alpha::Opaque)
        Means<Alpha::Opaque>(m_sum.data(), m_columns.Spans(), span.sum, out);
    else
        Means<Alpha::Straight>(m_sum.data(), m_columns.Spans(), span.sum, out);
}

void Scale(const PixelView& from, gdi::Surface& to)
{
    const double width = to.Width();
    const double height = to.Height();
    Scaler scaler(from, {0, static_cast<double>(from.width), 0, width},
                  {0, static_cast<double>(from.height), 0, height}, {0, 0, to.Width(), to.Height()});
    for (int y = 0; y < to.Height(); ++y)
        scaler.Row(y, to.Row(y));
}

PictureRows::PictureRows(const PixelView& from, const Stretch& columns, const Stretch& rows, const RECT& area)
    : m_from(from)
{
    const auto dx = Shift(columns);
    const auto dy = Shift(rows);
    if (!dx || !dy) {
        m_scaler.emplace(from, columns, rows, area);
        m_area = m_scaler->Area();
        m_row.resize(static_cast<std::size_t>(m_area.right - m_area.left));
        return;
    }
    const auto [left, right] = Covered(columns);
    const auto [top, bottom] = Covered(rows);
    const RECT picture = gdi::Moved({0, 0, from.width, from.height}, *dx, *dy);
    m_area = gdi::Cut(gdi::Cut(area, picture), {left, top, right, bottom});
    m_column = static_cast<std::ptrdiff_t>(m_area.left - *dx);
    m_rowShift = static_cast<std::ptrdiff_t>(-*dy);
}

const DWORD* PictureRows::Row(int y) noexcept
{
    if (!m_scaler) return m_from.first + (y + m_rowShift) * m_from.stride + m_column;
    m_scaler->Row(y, m_row.data());
    return m_row.data();
}

} // namespace kx::gdiplus

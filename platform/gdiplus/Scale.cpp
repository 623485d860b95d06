#include "platform/gdiplus/Scale.h"

#include <algorithm>

namespace kx::gdiplus {

namespace {

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

} // namespace

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

} // namespace kx::gdiplus

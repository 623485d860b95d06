#include "platform/gdi/Copies.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace kx::gdi {

namespace {

// One direction of a scaled copy: for each of the destination's pixels from `first` on the source's.
struct Axis
{
    int first = 0;
    std::vector<int> sources; // ascending

    int End() const noexcept { return first + static_cast<int>(sources.size()); }
    int operator[](int n) const noexcept { return sources[static_cast<std::size_t>(n - first)]; }
};

struct Range
{
    std::int64_t begin;
    std::int64_t length;
};

// The pixels of `to` within `first` to `end` whose source is one from `least` to `limit`.
Axis MakeAxis(const Range& to, const Range& from, int first, int end, int least, int limit)
{
    Axis axis;
    for (int n = first; n < end; ++n) {
        const std::int64_t nHalves = 2 * (n - to.begin) + 1;
        const std::int64_t nSource = from.begin + (nHalves * from.length - 1) / (2 * to.length);
        if (nSource < least) continue;
        if (nSource >= limit) break;
        if (axis.sources.empty()) axis.first = n;
        axis.sources.push_back(static_cast<int>(nSource));
    }
    return axis;
}

void Shift(Axis& axis, int nBy) noexcept
{
    for (int& nSource : axis.sources)
        nSource -= nBy;
}

void ScaleRow(DWORD* out, const DWORD* in, std::span<const int> columns) noexcept
{
    for (const int column : columns)
        *out++ = in[column];
}

void ScaleKeyedRow(DWORD* out, const DWORD* in, std::span<const int> columns, DWORD key) noexcept
{
    for (const int column : columns) {
        const DWORD pixel = in[column];
        *out = ((pixel ^ key) & COLOR_BITS) == 0 ? *out : pixel;
        ++out;
    }
}

void ScalePart(Surface& to, const Surface& from, const RECT& part, const Axis& columns, const Axis& rows,
               std::optional<DWORD> key)
{
    const auto row = std::span(columns.sources)
                         .subspan(static_cast<std::size_t>(part.left - columns.first),
                                  static_cast<std::size_t>(part.right - part.left));
    for (int y = part.top; y < part.bottom; ++y) {
        DWORD* out = to.Row(y) + part.left;
        if (key)
            ScaleKeyedRow(out, from.Row(rows[y]), row, *key);
        else if (y > part.top && rows[y] == rows[y - 1])
            std::memcpy(out, to.Row(y - 1) + part.left, row.size_bytes());
        else
            ScaleRow(out, from.Row(rows[y]), row);
    }
}

} // namespace

void ScaleBlock(const Canvas& to, const Block& block, const Canvas& from, const Block& source,
                std::optional<DWORD> key)
{
    const RECT area = Cut(Place(block), to.reach);
    if (IsEmpty(area) || source.cx <= 0 || source.cy <= 0) return;
    Axis columns = MakeAxis({block.x, block.cx}, {source.x, source.cx}, area.left, area.right,
                            from.bounds.left, from.bounds.right);
    Axis rows = MakeAxis({block.y, block.cy}, {source.y, source.cy}, area.top, area.bottom, from.bounds.top,
                         from.bounds.bottom);
    if (columns.sources.empty() || rows.sources.empty()) return;

    std::optional<Surface> snapshot;
    if (&to.surface == &from.surface) {
        const RECT read{columns.sources.front(), rows.sources.front(), columns.sources.back() + 1,
                        rows.sources.back() + 1};
        snapshot = Snapshot(from.surface, read);
        Shift(columns, read.left);
        Shift(rows, read.top);
    }
    const RECT all{columns.first, rows.first, columns.End(), rows.End()};
    ForEachPart(to.clip, all, [&](const RECT& part) {
        ScalePart(to.surface, snapshot ? *snapshot : from.surface, part, columns, rows, key);
    });
}

} // namespace kx::gdi

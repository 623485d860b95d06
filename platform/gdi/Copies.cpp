#include "platform/gdi/Canvas.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <optional>
#include <utility>
#include <vector>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace kx::gdi {

namespace {

// The part of a one-to-one copy that lies on both surfaces: `area` of the destination's, of which each pixel
// comes from the source's that lies `dx` to the left and `dy` above it.
struct Fit
{
    RECT area;
    int dx = 0;
    int dy = 0;
};

Fit FitBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc) noexcept
{
    const std::int64_t dx = std::int64_t{block.x} - xSrc;
    const std::int64_t dy = std::int64_t{block.y} - ySrc;
    const RECT area = Cut(Cut(AreaOf(block), to.reach), Moved(from.bounds, dx, dy));
    if (IsEmpty(area)) return {};
    return {area, static_cast<int>(dx), static_cast<int>(dy)};
}

constexpr std::size_t kShort = 24 * sizeof(DWORD);

// So few pixels are copied sooner than a call of memcpy is made.
void CopyShort(DWORD* out, const DWORD* in, std::size_t nBytes) noexcept
{
    const DWORD* const end = in + nBytes / sizeof(DWORD);
    for (; end - in >= 8; out += 8, in += 8)
        std::memcpy(out, in, 8 * sizeof(DWORD));
    for (; in != end; ++out, ++in)
        std::memcpy(out, in, sizeof(DWORD));
}

constexpr std::size_t kLarge = 4 << 20;

// More than caches hold is written past them, so that what it overwrites isn't read into them first.
void CopyLarge(DWORD* out, const DWORD* in, std::size_t nBytes) noexcept
{
#if defined(__SSE2__)
    constexpr std::size_t kAtOnce = 4, kAhead = 512;
    const DWORD* const end = in + nBytes / sizeof(DWORD);
    const bool bAligned = reinterpret_cast<std::uintptr_t>(out) % sizeof(__m128i) == 0;
    for (; bAligned && end - in >= 16; out += 16, in += 16) {
        auto* const target = reinterpret_cast<__m128i*>(out);
        const auto* const source = reinterpret_cast<const __m128i*>(in);
        _mm_prefetch(reinterpret_cast<const char*>(in) + kAhead, _MM_HINT_NTA);
        __m128i units[kAtOnce];
        for (std::size_t n = 0; n < kAtOnce; ++n)
            units[n] = _mm_loadu_si128(source + n);
        for (std::size_t n = 0; n < kAtOnce; ++n)
            _mm_stream_si128(target + n, units[n]);
    }
    _mm_sfence();
    nBytes = static_cast<std::size_t>(end - in) * sizeof(DWORD);
#endif
    std::memcpy(out, in, nBytes);
}

// Rows within one surface are taken from the end that the copy moves to, so that none is overwritten unread.
void CopyRows(Surface& to, const Surface& from, const Fit& fit) noexcept
{
    const RECT& area = fit.area;
    const bool bSame = &to == &from;
    const bool bFromBottom = bSame && fit.dy > 0;
    const int nFirst = bFromBottom ? area.bottom - 1 : area.top;
    const std::ptrdiff_t nOutStep = bFromBottom ? -to.Stride() : to.Stride();
    const std::ptrdiff_t nInStep = bFromBottom ? -from.Stride() : from.Stride();
    DWORD* out = to.Row(nFirst) + area.left;
    const DWORD* in = from.Row(nFirst - fit.dy) + area.left - fit.dx;
    std::size_t nBytes = static_cast<std::size_t>(area.right - area.left) * sizeof(DWORD);
    int nRows = area.bottom - area.top;
    if (!bSame && area.right - area.left == nOutStep && nOutStep == nInStep) // no gap between the rows
        nBytes *= static_cast<std::size_t>(std::exchange(nRows, 1));
    for (; nRows > 0; --nRows, out += nOutStep, in += nInStep)
        if (bSame)
            std::memmove(out, in, nBytes);
        else if (nBytes <= kShort)
            CopyShort(out, in, nBytes);
        else if (nBytes >= kLarge)
            CopyLarge(out, in, nBytes);
        else
            std::memcpy(out, in, nBytes);
}

// Puts the parts of a copy within one surface in an order in which none overwrites what a later one reads.
void Order(std::vector<RECT>& parts, const Fit& fit)
{
    std::sort(parts.begin(), parts.end(), [&](const RECT& a, const RECT& b) {
        if (a.top != b.top) return (fit.dy > 0) == (a.top > b.top);
        return fit.dx > 0 ? a.left > b.left : a.left < b.left;
    });
}

} // namespace

void CopyBlock(const Canvas& to, const Block& block, const Canvas& from, int xSrc, int ySrc)
{
    const Fit fit = FitBlock(to, block, from, xSrc, ySrc);
    const auto copy = [&](const RECT& part) { CopyRows(to.surface, from.surface, {part, fit.dx, fit.dy}); };
    if (&to.surface != &from.surface || to.clip.size() == 1) return ForEachPart(to.clip, fit.area, copy);
    std::vector<RECT> parts;
    ForEachPart(to.clip, fit.area, [&](const RECT& part) { parts.push_back(part); });
    Order(parts, fit);
    std::for_each(parts.begin(), parts.end(), copy);
}

Surface Snapshot(const Surface& surface, const RECT& area)
{
    auto copy = Surface::Make(area.right - area.left, area.bottom - area.top);
    if (!copy) throw std::bad_alloc();
    CopyRows(*copy, surface, {{0, 0, copy->Width(), copy->Height()}, -area.left, -area.top});
    return std::move(*copy);
}

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
    const RECT area = Cut(AreaOf(block), to.reach);
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

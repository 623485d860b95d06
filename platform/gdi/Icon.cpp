#include "platform/gdi/Icon.h"

#include "platform/gdi/DeviceContext.h"
#include "platform/gdi/Rect.h"

#include <algorithm>
#include <array>

using namespace kx::gdi;

namespace {

// How much of a target's pixel `n` a source's pixel `m` covers, where `from` pixels become `to`; both counted
// in parts of which a source's pixel has `to` and a target's `from`.
std::int64_t Overlap(int n, int m, int from, int to) noexcept
{
    const std::int64_t begin = std::max(std::int64_t{n} * from, std::int64_t{m} * to);
    const std::int64_t end = std::min((std::int64_t{n} + 1) * from, (std::int64_t{m} + 1) * to);
    return end - begin;
}

// The first of the source's pixels that a target's pixel takes from, or for the next one the last and one.
int SourceOf(int n, int from, int to) noexcept
{
    return static_cast<int>(std::int64_t{n} * from / to);
}

// The mean of the pixels below (x, y) of a surface that becomes `size`: each counts with its part in it, its
// colour with its opacity besides.
DWORD MeanAt(const Surface& image, int x, int y, SIZE size) noexcept
{
    std::array<std::int64_t, 3> colors{};
    std::int64_t nOpacity = 0;
    std::int64_t nArea = 0;
    for (int v = SourceOf(y, image.Height(), size.cy); v < image.Height(); ++v) {
        const std::int64_t nDown = Overlap(y, v, image.Height(), size.cy);
        if (nDown <= 0) break;
        for (int u = SourceOf(x, image.Width(), size.cx); u < image.Width(); ++u) {
            const std::int64_t nAcross = Overlap(x, u, image.Width(), size.cx);
            if (nAcross <= 0) break;
            const DWORD pixel = image.Row(v)[u];
            const std::int64_t nWeight = nDown * nAcross * (pixel >> 24);
            for (std::size_t n = 0; n < colors.size(); ++n)
                colors[n] += nWeight * (pixel >> 8 * n & 0xFF);
            nOpacity += nWeight;
            nArea += nDown * nAcross;
        }
    }
    if (nOpacity == 0) return 0;
    auto mean = static_cast<DWORD>((nOpacity + nArea / 2) / nArea) << 24;
    for (std::size_t n = 0; n < colors.size(); ++n)
        mean |= static_cast<DWORD>((colors[n] + nOpacity / 2) / nOpacity) << 8 * n;
    return mean;
}

void LayRow(const DWORD* from, DWORD* to, int nCount) noexcept
{
    for (int i = 0; i < nCount; ++i)
        to[i] = Mixed(from[i], to[i], from[i] >> 24);
}

} // namespace

std::shared_ptr<Icon> Icon::Make(Surface image, SIZE size)
{
    if (size.cx == 0) size.cx = image.Width();
    if (size.cy == 0) size.cy = image.Height();
    if (size == SIZE{image.Width(), image.Height()}) return std::make_shared<Icon>(std::move(image));
    auto scaled = Surface::Make(size.cx, size.cy);
    if (!scaled) return nullptr;
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x)
            scaled->Row(y)[x] = MeanAt(image, x, y, size);
    return std::make_shared<Icon>(std::move(*scaled));
}

int DestroyIcon(HICON hIcon)
{
    return FindAs<Icon>(hIcon) && Remove(hIcon) ? 1 : 0;
}

int DrawIcon(HDC hDC, int x, int y, HICON hIcon)
{
    const auto context = FindAs<DeviceContext>(hDC);
    const auto icon = FindAs<Icon>(hIcon);
    if (!context || !icon) return 0;
    const Surface& image = icon->surface;
    const Canvas canvas = context->Paint();
    const RECT place = Place({x, y, image.Width(), image.Height()});
    ForEachPart(canvas.clip, place, [&](const RECT& part) {
        for (int row = part.top; row < part.bottom; ++row)
            LayRow(image.Row(row - place.top) + (part.left - place.left), canvas.surface.Row(row) + part.left,
                   part.right - part.left);
    });
    return 1;
}

int GetIconSize(HICON hIcon, SIZE* pSize)
{
    const auto icon = FindAs<Icon>(hIcon);
    if (!icon || !pSize) return 0;
    pSize->cx = icon->surface.Width();
    pSize->cy = icon->surface.Height();
    return 1;
}

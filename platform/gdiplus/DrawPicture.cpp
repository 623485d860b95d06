#include "platform/gdiplus/DrawPicture.h"

#include "platform/gdiplus/Blend.h"
#include "platform/gdiplus/ClipRows.h"
#include "platform/gdiplus/ColorTransform.h"
#include "platform/gdiplus/PictureRows.h"

#include <algorithm>
#include <functional>
#include <new>
#include <optional>

namespace kx::gdiplus {

namespace {

// Whether two pictures share memory, by their first and last rows.
bool MayOverlap(const PixelView& a, const PixelView& b) noexcept
{
    return std::less<>()(a.first, b.Row(b.height)) && std::less<>()(b.first, a.Row(a.height));
}

} // namespace

void DrawPicture(const Target& target, const PixelView& from, Stretch columns, Stretch rows,
                 const Gdiplus::ColorMatrix* pMatrix)
{
    std::optional<gdi::Surface> copy;
    if (MayOverlap(from, target.pixels)) {
        copy = CopyPixels(from);
        if (!copy) throw std::bad_alloc();
    }
    PictureRows picture(copy ? ViewOf(*copy, from.alpha) : from, columns, rows, BoundsOf(target.clip));
    const RECT area = picture.Area();
    if (gdi::IsEmpty(area)) return;

    std::optional<ColorTransform> transform;
    std::vector<DWORD> changed;
    if (pMatrix) {
        transform.emplace(*pMatrix);
        changed.resize(static_cast<std::size_t>(area.right - area.left));
    }
    const Alpha alpha = transform ? transform->Gives(from.alpha) : from.alpha;
    ForRows(target.clip, area, [&](int y, std::span<const RECT> clip) {
        const DWORD* row = picture.Row(y);
        if (transform) {
            transform->Apply(row, from.alpha, changed.data(), area.right - area.left);
            row = changed.data();
        }
        for (const RECT& rect : clip) {
            const int nLeft = std::max(rect.left, area.left);
            const int nCount = std::min(rect.right, area.right) - nLeft;
            if (nCount > 0)
                Blend(row + (nLeft - area.left), alpha, target.pixels.Row(y) + nLeft, target.pixels.alpha,
                      nCount);
        }
    });
}

} // namespace kx::gdiplus

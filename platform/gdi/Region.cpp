#include "platform/Errno.h"
#include "platform/gdi/PixelRegion.h"

#include "platform/gdi/RoundShape.h"

#include <vector>

using namespace kx::gdi;

namespace {

HRGN AddRegion(PixelRegion pixels)
{
    return static_cast<HRGN>(Add(std::make_shared<Region>(std::move(pixels))));
}

PixelRegion Combined(const PixelRegion& a, const PixelRegion& b, int nMode)
{
    PixelRegion result = a;
    switch (nMode) {
    case RGN_AND:
        result.IntersectWith(b);
        break;
    case RGN_OR:
        result.UniteWith(b);
        break;
    case RGN_DIFF:
        result.Subtract(b);
        break;
    case RGN_XOR: {
        PixelRegion rest = b;
        rest.Subtract(a);
        result.Subtract(b);
        result.UniteWith(rest);
        break;
    }
    default:
        break;
    }
    return result;
}

} // namespace

HRGN CreateRectRgn(int nLeft, int nTop, int nRight, int nBottom)
try {
    return AddRegion(PixelRegion(Ordered({nLeft, nTop, nRight, nBottom})));
} catch (...) {
    return kx::NoMemory();
}

HRGN CreateRectsRgn(const RECT* pRects, int nCount)
try {
    if (nCount < 0 || (nCount > 0 && !pRects)) return nullptr;
    return AddRegion(PixelRegion::FromRects({pRects, static_cast<std::size_t>(nCount)}));
} catch (...) {
    return kx::NoMemory();
}

HRGN CreateMaskRgn(const std::uint64_t* pMask, int nWidth, int nHeight)
try {
    if (nWidth < 0 || nHeight < 0 || (nWidth > 0 && nHeight > 0 && !pMask)) return nullptr;
    return AddRegion(PixelRegion::FromMask(pMask, nWidth, nHeight));
} catch (...) {
    return kx::NoMemory();
}

int CombineRgn(HRGN hDst, HRGN hSrc1, HRGN hSrc2, int nMode)
try {
    const auto target = FindAs<Region>(hDst);
    const auto first = FindAs<Region>(hSrc1);
    const auto second = FindAs<Region>(nMode == RGN_COPY ? hSrc1 : hSrc2);
    if (!target || !first || !second || nMode < RGN_AND || nMode > RGN_COPY) return RGN_ERROR;
    target->pixels = Combined(first->pixels, second->pixels, nMode);
    return target->pixels.Complexity();
} catch (...) {
    return kx::NoMemory(); // RGN_ERROR
}

int PtInRegion(HRGN hRgn, int x, int y)
{
    const auto region = FindAs<Region>(hRgn);
    return region && region->pixels.Contains(x, y) ? 1 : 0;
}

int GetRgnBox(HRGN hRgn, RECT* pRect)
{
    const auto region = FindAs<Region>(hRgn);
    if (!region || !pRect) return RGN_ERROR;
    *pRect = region->pixels.Extents();
    return region->pixels.Complexity();
}

int OffsetRgn(HRGN hRgn, int x, int y)
try {
    const auto region = FindAs<Region>(hRgn);
    if (!region) return RGN_ERROR;
    region->pixels.Move(x, y);
    return region->pixels.Complexity();
} catch (...) {
    return kx::NoMemory(); // RGN_ERROR
}

HRGN CreateRoundRectRgn(int nLeft, int nTop, int nRight, int nBottom, int cxEllipse, int cyEllipse)
try {
    const RECT rect = Ordered({nLeft, nTop, nRight, nBottom});
    if (IsEmpty(rect)) return AddRegion(PixelRegion());
    const RoundShape shape(rect, cxEllipse, cyEllipse);
    const int nCorners = shape.CornerRows();
    std::vector<RECT> rows;
    rows.reserve(2 * static_cast<std::size_t>(nCorners) + 1);
    for (int n = 0; n < nCorners; ++n)
        rows.push_back(shape.Row(rect.top + n));
    rows.push_back({rect.left, rect.top + nCorners, rect.right, rect.bottom - nCorners});
    for (int n = nCorners; n > 0; --n)
        rows.push_back(shape.Row(rect.bottom - n));
    return AddRegion(PixelRegion::FromRects(rows));
} catch (...) {
    return kx::NoMemory();
}

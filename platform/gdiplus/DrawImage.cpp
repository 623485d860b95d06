#include "platform/gdiplus/Attributes.h"
#include "platform/gdiplus/DrawPicture.h"
#include "platform/gdiplus/Graphics.h"
#include "platform/gdiplus/Startup.h"

#include <algorithm>
#include <cmath>
#include <iterator>

using namespace kx::gdiplus;

using namespace Gdiplus;

namespace {

// Draws a block of a picture, which `place` gives for its size, over one of the target.
template <class Place>
Status Draw(GpGraphics& graphics, GpImage& image, Place&& place, const ColorMatrix* pMatrix)
{
    const PixelView from = image.Pixels();
    const auto [columns, rows] = place(static_cast<double>(from.width), static_cast<double>(from.height));
    return graphics.On([&, columns = columns, rows = rows](const Target& target) {
        DrawPicture(target, from, columns, rows, pMatrix);
    });
}

struct Block
{
    Stretch columns;
    Stretch rows;
};

} // namespace

GpStatus DllExports::GdipDrawImageI(GpGraphics* pGraphics, GpImage* pImage, INT x, INT y)
{
    return Guarded([&] {
        if (!pGraphics || !pImage) return InvalidParameter;
        return Draw(
            *pGraphics, *pImage,
            [=](double width, double height) -> Block {
                return {{0, width, static_cast<double>(x), width},
                        {0, height, static_cast<double>(y), height}};
            },
            nullptr);
    });
}

GpStatus DllExports::GdipDrawImageRectI(GpGraphics* pGraphics, GpImage* pImage, INT x, INT y, INT nWidth,
                                        INT nHeight)
{
    return Guarded([&] {
        if (!pGraphics || !pImage) return InvalidParameter;
        return Draw(
            *pGraphics, *pImage,
            [=](double width, double height) -> Block {
                return {{0, width, static_cast<double>(x), static_cast<double>(nWidth)},
                        {0, height, static_cast<double>(y), static_cast<double>(nHeight)}};
            },
            nullptr);
    });
}

GpStatus DllExports::GdipDrawImageRectRect(GpGraphics* pGraphics, GpImage* pImage, REAL x, REAL y,
                                           REAL nWidth, REAL nHeight, REAL xSrc, REAL ySrc, REAL nSrcWidth,
                                           REAL nSrcHeight, GpUnit unit, const GpImageAttributes* pAttributes,
                                           DrawImageAbort, void*)
{
    return Guarded([&] {
        const REAL values[] = {x, y, nWidth, nHeight, xSrc, ySrc, nSrcWidth, nSrcHeight};
        if (!pGraphics || !pImage ||
            !std::all_of(std::begin(values), std::end(values), [](REAL n) { return std::isfinite(n); }))
            return InvalidParameter;
        if (unit != UnitPixel) return NotImplemented;
        return Draw(
            *pGraphics, *pImage,
            [=](double, double) -> Block {
                return {{xSrc, nSrcWidth, x, nWidth}, {ySrc, nSrcHeight, y, nHeight}};
            },
            pAttributes && pAttributes->matrix ? &*pAttributes->matrix : nullptr);
    });
}

#include "platform/gdiplus/Path.h"

#include "platform/gdi/Rect.h"
#include "platform/gdiplus/DrawObjects.h"

#include <utility>

using namespace kx::gdiplus;

namespace Gdiplus {

kx::gdi::PixelRegion GpPath::Inside() const
{
    using namespace kx::gdi;
    PixelRegion inside;
    for (const Figure& figure : m_figures) {
        PixelRegion more(
            {ToSide(figure.left), ToSide(figure.top), ToSide(figure.right), ToSide(figure.bottom)});
        if (m_mode == FillModeAlternate) {
            PixelRegion rest = inside;
            rest.Subtract(more);
            more.Subtract(inside);
            inside = std::move(rest);
        }
        inside.UniteWith(more);
    }
    return inside;
}

namespace DllExports {

GpStatus GdipCreatePath(GpFillMode mode, GpPath** ppPath)
{
    return MakeObject(ppPath, [&] {
        if (mode != FillModeAlternate && mode != FillModeWinding) return InvalidParameter;
        return Give<GpPath>(ppPath, mode);
    });
}

GpStatus GdipAddPathRectangleI(GpPath* pPath, INT x, INT y, INT nWidth, INT nHeight)
{
    return Guarded([&] {
        if (!pPath) return InvalidParameter;
        if (nWidth > 0 && nHeight > 0)
            pPath->Add({x, y, std::int64_t{x} + nWidth, std::int64_t{y} + nHeight});
        return Ok;
    });
}

GpStatus GdipDeletePath(GpPath* pPath)
{
    return EndObject(pPath);
}

} // namespace DllExports

} // namespace Gdiplus

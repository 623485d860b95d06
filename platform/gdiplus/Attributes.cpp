#include "platform/gdiplus/Attributes.h"

#include "platform/gdiplus/DrawObjects.h"

#include <algorithm>
#include <cmath>
#include <iterator>

using namespace kx::gdiplus;

namespace {

bool IsFinite(const Gdiplus::ColorMatrix& matrix) noexcept
{
    return std::all_of(std::begin(matrix.m), std::end(matrix.m), [](const auto& row) {
        return std::all_of(std::begin(row), std::end(row), [](float f) { return std::isfinite(f); });
    });
}

} // namespace

namespace Gdiplus::DllExports {

GpStatus GdipCreateImageAttributes(GpImageAttributes** ppAttributes)
{
    return MakeObject(ppAttributes, [&] { return Give<GpImageAttributes>(ppAttributes); });
}

GpStatus GdipDisposeImageAttributes(GpImageAttributes* pAttributes)
{
    return EndObject(pAttributes);
}

GpStatus GdipSetImageAttributesColorMatrix(GpImageAttributes* pAttributes, ColorAdjustType type, int bEnable,
                                           const ColorMatrix* pMatrix, const ColorMatrix* pGray,
                                           ColorMatrixFlags flags)
{
    return Guarded([&] {
        if (!pAttributes || (bEnable && !pMatrix)) return InvalidParameter;
        if (type != ColorAdjustTypeDefault || flags != ColorMatrixFlagsDefault || pGray)
            return NotImplemented;
        if (bEnable && !IsFinite(*pMatrix)) return InvalidParameter;
        pAttributes->matrix = bEnable ? std::optional(*pMatrix) : std::nullopt;
        return Ok;
    });
}

} // namespace Gdiplus::DllExports

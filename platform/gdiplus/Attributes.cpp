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
        if (!pAttributes || type < ColorAdjustTypeDefault || type > ColorAdjustTypeText)
            return InvalidParameter;
        std::optional<ColorMatrix> matrix;
        if (bEnable) {
            if (!pMatrix) return InvalidParameter;
            if (pGray || flags != ColorMatrixFlagsDefault) return NotImplemented;
            if (!IsFinite(*pMatrix)) return InvalidParameter;
            matrix = *pMatrix;
        }
        if (type == ColorAdjustTypeDefault) pAttributes->forAll = matrix;
        if (type == ColorAdjustTypeBitmap) pAttributes->forBitmaps = matrix;
        return Ok;
    });
}

} // namespace Gdiplus::DllExports

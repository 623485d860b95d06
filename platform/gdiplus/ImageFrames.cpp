#include "platform/gdiplus/Image.h"
#include "platform/gdiplus/Startup.h"

#include <cstring>

using namespace kx::gdiplus;

namespace Gdiplus::DllExports {

namespace {

bool HasDimension(const GpImage* pImage, const GUID* pDimension) noexcept
{
    if (!pImage || !pDimension) return false;
    const GUID dimension = pImage->Dimension();
    return std::memcmp(&dimension, pDimension, sizeof dimension) == 0;
}

unsigned CountOf(const GpImage& image) noexcept
{
    return image.Frames() ? image.Frames()->Count() : 1;
}

std::optional<Property> FindProperty(const GpImage& image, PROPID id)
{
    return image.Frames() ? image.Frames()->FindProperty(id) : std::nullopt;
}

} // namespace

GpStatus GdipImageGetFrameDimensionsCount(GpImage* pImage, UINT* pnCount)
{
    return Guarded([&] {
        if (!pImage || !pnCount) return InvalidParameter;
        *pnCount = 1;
        return Ok;
    });
}

GpStatus GdipImageGetFrameDimensionsList(GpImage* pImage, GUID* pDimensions, UINT nCount)
{
    return Guarded([&] {
        if (!pImage || !pDimensions || nCount != 1) return InvalidParameter;
        *pDimensions = pImage->Dimension();
        return Ok;
    });
}

GpStatus GdipImageGetFrameCount(GpImage* pImage, const GUID* pDimension, UINT* pnCount)
{
    return Guarded([&] {
        if (!HasDimension(pImage, pDimension) || !pnCount) return InvalidParameter;
        *pnCount = CountOf(*pImage);
        return Ok;
    });
}

GpStatus GdipImageSelectActiveFrame(GpImage* pImage, const GUID* pDimension, UINT nFrame)
{
    return Guarded([&] {
        if (!HasDimension(pImage, pDimension) || nFrame >= CountOf(*pImage)) return InvalidParameter;
        return pImage->SelectFrame(nFrame);
    });
}

GpStatus GdipGetPropertyItemSize(GpImage* pImage, PROPID id, UINT* pnSize)
{
    return Guarded([&] {
        if (!pImage || !pnSize) return InvalidParameter;
        *pnSize = 0;
        const auto property = FindProperty(*pImage, id);
        if (!property) return PropertyNotFound;
        *pnSize = static_cast<UINT>(sizeof(PropertyItem) + property->value.size());
        return Ok;
    });
}

GpStatus GdipGetPropertyItem(GpImage* pImage, PROPID id, UINT nSize, PropertyItem* pItem)
{
    return Guarded([&] {
        if (!pImage || !pItem) return InvalidParameter;
        const auto property = FindProperty(*pImage, id);
        if (!property) return PropertyNotFound;
        const std::size_t nValue = property->value.size();
        if (nSize != sizeof(PropertyItem) + nValue) return InvalidParameter;
        *pItem = {id, static_cast<DWORD>(nValue), property->type, pItem + 1};
        std::memcpy(pItem->value, property->value.data(), nValue);
        return Ok;
    });
}

} // namespace Gdiplus::DllExports

#include "include/platform/GdiPlus.h"
#include "platform/gdiplus/LastStatus.h"

namespace Gdiplus {

using namespace DllExports;

void End::operator()(GpImageAttributes* p) const noexcept
{
    GdipDisposeImageAttributes(p);
}

ImageAttributes::ImageAttributes()
{
    GpImageAttributes* pAttributes = nullptr;
    kx::gdiplus::KeepIn(m_lastResult, GdipCreateImageAttributes(&pAttributes));
    m_pAttributes.reset(pAttributes);
}

Status ImageAttributes::SetColorMatrix(const ColorMatrix* pMatrix, ColorMatrixFlags flags,
                                       ColorAdjustType type)
{
    return kx::gdiplus::KeepIn(m_lastResult,
                               GdipSetImageAttributesColorMatrix(Native(), type, 1, pMatrix, nullptr, flags));
}

Status ImageAttributes::GetLastStatus() const
{
    return kx::gdiplus::TakeFrom(m_lastResult);
}

} // namespace Gdiplus

#include "platform/gdiplus/Image.h"

namespace Gdiplus {

using kx::gdiplus::Picture;

GpImage::~GpImage() = default;

PixelFormat GpImage::Format() const noexcept
{
    if (m_picture) return m_picture->format;
    return m_callers.alpha == kx::gdiplus::Alpha::Opaque ? PixelFormat32bppRGB : PixelFormat32bppARGB;
}

const kx::gdiplus::Frames* GpImage::Frames() const noexcept
{
    return m_picture ? m_picture->frames.get() : nullptr;
}

Status GpImage::SelectFrame(unsigned nFrame)
{
    if (!Frames()) return Ok;
    return m_picture->frames->Select(nFrame, m_picture->surface, m_picture->alpha);
}

void GpImage::Replace(kx::gdi::Surface surface)
{
    m_picture = Picture{std::move(surface), Pixels().alpha, Format(), nullptr, Dimension()};
}

} // namespace Gdiplus

#include "platform/gdiplus/Image.h"

#include "platform/gdiplus/DrawObjects.h"

namespace Gdiplus {

using kx::gdiplus::Alpha;
using kx::gdiplus::Picture;
using kx::gdiplus::PixelView;

GpImage::~GpImage() = default;

PixelView GpImage::Pixels() noexcept
{
    return std::visit([](auto& pixels) { return pixels.View(); }, m_pixels);
}

void GpImage::Changed() noexcept
{
    std::visit([](auto& pixels) { pixels.Changed(); }, m_pixels);
}

int GpImage::Width() const noexcept
{
    return std::visit([](const auto& pixels) { return pixels.Width(); }, m_pixels);
}

int GpImage::Height() const noexcept
{
    return std::visit([](const auto& pixels) { return pixels.Height(); }, m_pixels);
}

PixelFormat GpImage::Format() const noexcept
{
    return std::visit([](const auto& pixels) { return pixels.Format(); }, m_pixels);
}

Alpha GpImage::HighByte() const noexcept
{
    return std::visit([](const auto& pixels) { return pixels.HighByte(); }, m_pixels);
}

DWORD GpImage::Get(int x, int y) const noexcept
{
    return std::visit([=](const auto& pixels) { return pixels.Get(x, y); }, m_pixels);
}

void GpImage::Set(int x, int y, DWORD pixel) noexcept
{
    std::visit([=](auto& pixels) { pixels.Set(x, y, pixel); }, m_pixels);
}

GUID GpImage::Dimension() const noexcept
{
    return std::visit([](const auto& pixels) { return pixels.Dimension(); }, m_pixels);
}

const kx::gdiplus::Frames* GpImage::Frames() const noexcept
{
    const auto* const pOwn = std::get_if<Picture>(&m_pixels);
    return pOwn ? pOwn->frames.get() : nullptr;
}

Status GpImage::SelectFrame(unsigned nFrame)
{
    auto* const pOwn = std::get_if<Picture>(&m_pixels);
    return pOwn && pOwn->frames ? pOwn->frames->Select(nFrame, pOwn->surface, pOwn->alpha) : Ok;
}

void GpImage::Replace(kx::gdi::Surface surface) noexcept
{
    m_pixels = Picture{std::move(surface), HighByte(), Format(), nullptr, Dimension()};
}

Status GpImage::Clone(GpImage** ppClone)
{
    auto surface = CopyPixels(Pixels());
    if (!surface) return OutOfMemory;
    Picture copy{std::move(*surface), HighByte(), Format(), nullptr, Dimension()};
    if (Frames()) {
        copy.frames = Frames()->Clone();
        const Status status = copy.frames->Select(0, copy.surface, copy.alpha);
        if (status != Ok) return status;
    }
    return kx::gdiplus::Give<GpBitmap>(ppClone, std::move(copy));
}

} // namespace Gdiplus

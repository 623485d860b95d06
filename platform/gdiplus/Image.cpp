#include "platform/gdiplus/Image.h"

#include "platform/gdiplus/DrawObjects.h"

namespace Gdiplus {

using kx::gdiplus::Alpha;
using kx::gdiplus::Picture;
using kx::gdiplus::PixelView;

namespace {

// Hands over whichever of both there is. Unlike std::visit it can't throw.
template <class Pixels, class Use>
auto With(Pixels& pixels, Use&& use) noexcept
{
    auto* const pOwn = std::get_if<Picture>(&pixels);
    return pOwn ? use(*pOwn) : use(*std::get_if<kx::gdiplus::CallerPixels>(&pixels));
}

} // namespace

GpImage::~GpImage() = default;

PixelView GpImage::Pixels() noexcept
{
    return With(m_pixels, [](auto& pixels) { return pixels.View(); });
}

void GpImage::Changed() noexcept
{
    With(m_pixels, [](auto& pixels) { pixels.Changed(); });
}

int GpImage::Width() const noexcept
{
    return With(m_pixels, [](const auto& pixels) { return pixels.Width(); });
}

int GpImage::Height() const noexcept
{
    return With(m_pixels, [](const auto& pixels) { return pixels.Height(); });
}

PixelFormat GpImage::Format() const noexcept
{
    return With(m_pixels, [](const auto& pixels) { return pixels.Format(); });
}

Alpha GpImage::HighByte() const noexcept
{
    return With(m_pixels, [](const auto& pixels) { return pixels.HighByte(); });
}

DWORD GpImage::Get(int x, int y) const noexcept
{
    return With(m_pixels, [=](const auto& pixels) { return pixels.Get(x, y); });
}

void GpImage::Set(int x, int y, DWORD pixel) noexcept
{
    With(m_pixels, [=](auto& pixels) { pixels.Set(x, y, pixel); });
}

GUID GpImage::Dimension() const noexcept
{
    return With(m_pixels, [](const auto& pixels) { return pixels.Dimension(); });
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

void GpImage::Replace(kx::gdi::Surface surface)
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

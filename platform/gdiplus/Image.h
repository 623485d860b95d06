#pragma once

#include "include/platform/GdiPlusFlat.h"
#include "include/platform/Stream.h"
#include "platform/Handles.h"
#include "platform/gdiplus/Picture.h"

#include <memory>
#include <optional>
#include <utility>

namespace kx::gdiplus {

struct ReleaseStream
{
    void operator()(IStream* pStream) const { pStream->Release(); }
};
// A reference to a stream.
using StreamRef = std::unique_ptr<IStream, ReleaseStream>;

inline StreamRef Refer(IStream* pStream)
{
    pStream->AddRef();
    return StreamRef(pStream);
}

} // namespace kx::gdiplus

namespace Gdiplus {

// A picture: the pixels of its current frame, which are its own, or the caller's.
class GpImage
{
public:
    // The stream that it was read from is held as long as it lives: callers end theirs after that.
    explicit GpImage(kx::gdiplus::Picture picture, kx::gdiplus::StreamRef stream = nullptr) noexcept
        : m_picture(std::move(picture)), m_stream(std::move(stream))
    {
    }
    explicit GpImage(const kx::gdiplus::PixelView& callers) noexcept : m_callers(callers) {}
    GpImage(const GpImage&) = delete;
    GpImage& operator=(const GpImage&) = delete;
    virtual ~GpImage() = default;

    // The current frame. It ends with the next call that changes the picture's frame or size.
    kx::gdiplus::PixelView Pixels() noexcept { return m_picture ? m_picture->View() : m_callers; }
    PixelFormat Format() const noexcept
    {
        if (m_picture) return m_picture->format;
        return m_callers.alpha == kx::gdiplus::Alpha::Opaque ? PixelFormat32bppRGB : PixelFormat32bppARGB;
    }
    GUID Dimension() const noexcept { return m_picture ? m_picture->dimension : FrameDimensionPage; }
    // Null for a picture of one frame.
    const kx::gdiplus::Frames* Frames() const noexcept
    {
        return m_picture ? m_picture->frames.get() : nullptr;
    }
    Status SelectFrame(unsigned nFrame)
    {
        if (!Frames()) return Ok;
        return m_picture->frames->Select(nFrame, m_picture->surface, m_picture->alpha);
    }
    // Pixels of its own in place of all that it had; the format stays.
    void Replace(kx::gdi::Surface surface)
    {
        m_picture = kx::gdiplus::Picture{std::move(surface), Pixels().alpha, Format(), nullptr, Dimension()};
    }

private:
    std::optional<kx::gdiplus::Picture> m_picture; // nothing over the caller's pixels
    const kx::gdiplus::PixelView m_callers;
    const kx::gdiplus::StreamRef m_stream;
    const kx::LiveHandle m_live;
};

// All pictures are: it is another name for what can be asked for single pixels.
class GpBitmap : public GpImage
{
public:
    using GpImage::GpImage;
};

} // namespace Gdiplus

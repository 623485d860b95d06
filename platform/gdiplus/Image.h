#pragma once

#include "include/platform/GdiPlusFlat.h"
#include "platform/LiveHandles.h"
#include "platform/gdiplus/CallerPixels.h"
#include "platform/gdiplus/Picture.h"
#include "platform/gdiplus/StreamRef.h"

#include <utility>
#include <variant>

namespace Gdiplus {

// A picture: the pixels of its current frame, which are its own, or the caller's.
class GpImage
{
public:
    // The stream that it was read from is held as long as it lives: callers end theirs after that.
    explicit GpImage(kx::gdiplus::Picture picture, kx::gdiplus::StreamRef stream = nullptr) noexcept
        : m_pixels(std::move(picture)), m_stream(std::move(stream))
    {
    }
    explicit GpImage(kx::gdiplus::CallerPixels pixels) noexcept : m_pixels(std::move(pixels)) {}
    GpImage(const GpImage&) = delete;
    GpImage& operator=(const GpImage&) = delete;
    virtual ~GpImage();

    // The current frame. It ends with the next call that changes the picture's frame or size.
    kx::gdiplus::PixelView Pixels() noexcept;
    // To be called when pixels were changed through a view.
    void Changed() noexcept;

    int Width() const noexcept;
    int Height() const noexcept;
    PixelFormat Format() const noexcept;
    // A pixel as it lies there. The place is within the picture.
    DWORD Get(int x, int y) const noexcept;
    void Set(int x, int y, DWORD pixel) noexcept;
    kx::gdiplus::Alpha HighByte() const noexcept;

    GUID Dimension() const noexcept;
    // Null for a picture of one frame.
    const kx::gdiplus::Frames* Frames() const noexcept;
    Status SelectFrame(unsigned nFrame);
    // Pixels of its own in place of all that it had; the format stays.
    void Replace(kx::gdi::Surface surface);
    // OutOfMemory.
    Status Clone(GpImage** ppClone);

private:
    std::variant<kx::gdiplus::Picture, kx::gdiplus::CallerPixels> m_pixels;
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

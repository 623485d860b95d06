#pragma once

#include "include/platform/GdiPlusFlat.h"
#include "platform/gdi/Surface.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace kx::gdiplus {

// What the high byte of a pixel means.
enum class Alpha
{
    Opaque,       // nothing: the pixel hides what lies below
    Straight,     // opacity, by which the colours are not multiplied
    Premultiplied // opacity, by which they are
};

// Pixels that lie elsewhere, 0xAARRGGBB, the top row first.
struct PixelView
{
    DWORD* first = nullptr;
    std::ptrdiff_t stride = 0; // from one row to the next, in pixels; may be negative
    int width = 0;
    int height = 0;
    Alpha alpha = Alpha::Opaque;

    DWORD* Row(int y) const noexcept { return first + y * stride; }
};

// The frames of a picture that has several. Keeps the bytes they are decoded from, not the frames.
class Frames
{
public:
    virtual ~Frames() = default;
    virtual GUID Dimension() const noexcept = 0;
    virtual unsigned Count() const noexcept = 0;
    // Makes that frame the picture: may draw on the surface given, or replace it. On failure it stays.
    virtual Gdiplus::Status Select(unsigned nFrame, gdi::Surface& surface, Alpha& alpha) = 0;
    virtual std::unique_ptr<Frames> Clone() const = 0;
};

} // namespace kx::gdiplus

namespace Gdiplus {

// A picture: the pixels of its current frame, which are its own, or the caller's.
class GpImage
{
public:
    GpImage(const GpImage&) = delete;
    GpImage& operator=(const GpImage&) = delete;
    virtual ~GpImage();

    // The current frame. It ends with the next call that changes the picture's frame or size.
    virtual kx::gdiplus::PixelView Pixels() noexcept = 0;
    // To be called when pixels were changed through a view.
    virtual void Changed() noexcept {}

protected:
    GpImage() = default;
};

class GpBitmap : public GpImage
{
};

} // namespace Gdiplus

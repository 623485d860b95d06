#pragma once

#include "platform/gdi/Bitmap.h"
#include "platform/gdi/Brush.h"
#include "platform/gdi/Canvas.h"
#include "platform/gdi/Object.h"
#include "platform/gdi/Pen.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace kx::gdi {

// A surface to draw on, with what is selected into it. One thread at a time.
class DeviceContext : public Object
{
public:
    // A memory surface, whose first bitmap is its own, of 1 by 1 pixel.
    DeviceContext();
    // The surface of an area of the desktop; its 0, 0 is the area's top left, which may lie outside the
    // desktop.
    explicit DeviceContext(const RECT& area);
    ~DeviceContext() override;

    bool IsMemory() const noexcept { return m_own != nullptr; }
    // Where to draw now. It ends before the next change of the context.
    Canvas Paint() noexcept;

    // Selects a bitmap, pen, brush or font and gives the handle of what it displaced; null where it can't be.
    HGDIOBJ Select(std::shared_ptr<Object> object);
    const Pen& CurrentPen() const noexcept { return static_cast<const Pen&>(*Held(Kind::Pen)); }
    const Brush& CurrentBrush() const noexcept { return static_cast<const Brush&>(*Held(Kind::Brush)); }
    const std::shared_ptr<Object>& CurrentFont() const noexcept { return Held(Kind::Font); }

    // Clips to a region in the context's coordinates, or with nothing to the surface alone. Throws
    // std::bad_alloc and changes nothing then.
    void SetClip(std::optional<PixelRegion> region);
    // What drawing is clipped to, in the context's coordinates: its complexity, and its bounds.
    int ClipBox(RECT& rect) const noexcept;

    COLORREF textColor = RGB(0, 0, 0);
    COLORREF backColor = RGB(255, 255, 255);
    int backMode = OPAQUE;
    POINT position; // where the next line begins

private:
    // What is drawn on, and the part of it that may be.
    struct View
    {
        Surface* surface;
        RECT bounds;
        PixelRegion visible;
        std::vector<RECT> clip; // the rectangles of `visible`
    };
    View MakeView(Surface& surface, const RECT& bounds, const std::optional<PixelRegion>& region) const;

    const std::shared_ptr<Object>& Held(Kind what) const noexcept
    {
        return m_held[static_cast<std::size_t>(what)];
    }
    void HoldStock();
    HGDIOBJ SelectBitmap(std::shared_ptr<Bitmap> bitmap);
    // Takes an object, whose `selected` counts this context already, in place of the one that it gives.
    std::shared_ptr<Object> Hold(std::shared_ptr<Object> object) noexcept;

    const POINT m_origin;
    std::optional<PixelRegion> m_region; // in the context's coordinates
    std::shared_ptr<Bitmap> m_own;       // null on the desktop
    View m_view;
    std::array<std::shared_ptr<Object>, static_cast<std::size_t>(Kind::Font) + 1> m_held;
};

} // namespace kx::gdi

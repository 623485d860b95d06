#pragma once

#include "platform/gdi/Bitmap.h"
#include "platform/gdi/Canvas.h"
#include "platform/gdi/Object.h"
#include "platform/gdi/Tools.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace kx::gdi {

// A surface to draw on, with what is selected into it. One thread at a time.
class DeviceContext : public Object
{
public:
    static constexpr Kind KIND = Kind::Context;

    // A memory surface, whose first bitmap is its own, of 1 by 1 pixel.
    DeviceContext();
    ~DeviceContext() override;

    bool IsMemory() const noexcept { return m_own != nullptr; }
    // The place to draw on now. It ends before the next change of the context.
    Canvas Paint() noexcept;
    // The place to read from now: shared pixels as they are seen, of which the rectangle is up to date.
    // Nothing is written there. It takes the lock of shared pixels, if it isn't held already.
    Canvas Read(const RECT& rect, std::optional<sync::MutexLock>& lock);

    // Selects a bitmap, pen, brush or font and gives the handle of what it displaced; null where it can't be.
    HGDIOBJ Select(std::shared_ptr<Object> object);
    const Pen& CurrentPen() const noexcept { return static_cast<const Pen&>(*Held(Kind::Pen)); }
    const Brush& CurrentBrush() const noexcept { return static_cast<const Brush&>(*Held(Kind::Brush)); }
    Object* CurrentFont() const noexcept { return Held(Kind::Font).get(); }

    // Clips to a region in the context's coordinates, or with nothing to the surface alone. Throws
    // std::bad_alloc and changes nothing then.
    void SetClip(std::optional<PixelRegion> region);
    // The clip of drawing, in the context's coordinates: its complexity, and its bounds.
    int ClipBox(RECT& rect) const noexcept;

    COLORREF textColor = RGB(0, 0, 0);
    COLORREF backColor = RGB(255, 255, 255);
    int backMode = OPAQUE;

protected:
    // Pixels that others draw on too, under their lock, of which drawing reaches `limit` alone where there is
    // one. Both outlive the context.
    DeviceContext(Surface& pixels, sync::Mutex& lock, const std::optional<PixelRegion>& limit);

private:
    // Shared pixels as a reader sees them, of which the rectangle is up to date. With their lock held.
    virtual Surface& Look(const RECT&) { return *m_view.surface; }

    // The surface that is drawn on, and the part of it that may be.
    struct View
    {
        Surface* surface = nullptr;
        RECT bounds{};
        PixelRegion visible;
        RECT reach{};           // the least rectangle around it
        std::vector<RECT> clip; // its rectangles
    };
    void SetView(Surface& surface, const std::optional<PixelRegion>& region);

    const std::shared_ptr<Object>& Held(Kind what) const noexcept
    {
        return m_held[static_cast<std::size_t>(what)];
    }
    void HoldStock();
    HGDIOBJ SelectBitmap(std::shared_ptr<Object> object);
    // Takes an object, whose `selected` counts this context already, in place of the one that it gives.
    std::shared_ptr<Object> Hold(std::shared_ptr<Object> object) noexcept;

    const std::optional<PixelRegion> m_limit;
    std::optional<PixelRegion> m_region;
    std::shared_ptr<Bitmap> m_own;         // null where the pixels are shared
    sync::Mutex* const m_shared = nullptr; // their lock; null for memory, so no checker follows it
    View m_view;
    std::array<std::shared_ptr<Object>, static_cast<std::size_t>(Kind::Font) + 1> m_held;
};

} // namespace kx::gdi

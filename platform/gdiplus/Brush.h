#pragma once

#include "include/platform/GdiPlusFlat.h"
#include "platform/LiveHandles.h"
#include "platform/gdi/PixelRegion.h"

#include <cstdint>
#include <span>

namespace Gdiplus {

// Gives each pixel of a graphics a colour of straight alpha.
class GpBrush
{
public:
    GpBrush() = default;
    GpBrush(const GpBrush&) = delete;
    GpBrush& operator=(const GpBrush&) = delete;
    virtual ~GpBrush() = default;

    // Whether all of its colours are.
    virtual bool IsOpaque() const noexcept = 0;
    // Whether all rows have the same colours.
    virtual bool HasOneRow() const noexcept { return false; }
    // The pixels that it has colours for; null: all.
    virtual const kx::gdi::PixelRegion* Area() const noexcept { return nullptr; }
    // The colours of a row's pixels from x on, within the area, with the mask's bits alone.
    virtual void Row(std::int64_t x, std::int64_t y, DWORD mask, std::span<DWORD> out) const noexcept = 0;

private:
    kx::LiveHandle m_live;
};

} // namespace Gdiplus

#pragma once

#include "include/platform/GdiPlusFlat.h"
#include "platform/LiveHandles.h"

#include <optional>

namespace Gdiplus {

// How pictures are to be drawn.
class GpImageAttributes
{
public:
    // The matrix that counts for pictures, or null.
    const ColorMatrix* Matrix() const noexcept
    {
        if (forBitmaps) return &*forBitmaps;
        return forAll ? &*forAll : nullptr;
    }

    std::optional<ColorMatrix> forAll;
    std::optional<ColorMatrix> forBitmaps; // goes before the one for all

private:
    kx::LiveHandle m_live;
};

} // namespace Gdiplus

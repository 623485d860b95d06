#pragma once

#include "include/platform/GdiPlusFlat.h"
#include "platform/LiveHandles.h"

#include <optional>

namespace Gdiplus {

// How pictures are to be drawn.
class GpImageAttributes
{
public:
    std::optional<ColorMatrix> matrix;

private:
    kx::LiveHandle m_live;
};

} // namespace Gdiplus

#pragma once

#include "platform/LiveHandles.h"
#include "platform/gdi/PixelRegion.h"

#include <utility>

namespace Gdiplus {

class GpRegion
{
public:
    explicit GpRegion(kx::gdi::PixelRegion of) noexcept : pixels(std::move(of)) {}

    const kx::gdi::PixelRegion pixels;

private:
    kx::LiveHandle m_live;
};

} // namespace Gdiplus

#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/PixelRegion.h"

#include <utility>

namespace kx::gdi {

class Region : public Object
{
public:
    explicit Region(PixelRegion of) noexcept : Object(Kind::Region), pixels(std::move(of)) {}

    PixelRegion pixels;
};

} // namespace kx::gdi

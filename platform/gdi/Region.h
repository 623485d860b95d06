#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/PixelRegion.h"

#include <utility>

namespace kx::gdi {

class Region final : public Object
{
public:
    static constexpr Kind KIND = Kind::Region;

    explicit Region(PixelRegion of) noexcept : Object(KIND), pixels(std::move(of)) {}

    PixelRegion pixels;
};

} // namespace kx::gdi

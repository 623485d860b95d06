#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

#include <utility>

namespace kx::gdi {

// An icon: pixels whose high byte is their opacity.
class Icon final : public Object
{
public:
    static constexpr Kind KIND = Kind::Icon;

    explicit Icon(Surface image) : Object(KIND), surface(std::move(image)) {}

    const Surface surface;
};

} // namespace kx::gdi

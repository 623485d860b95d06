#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

#include <utility>

namespace kx::gdi {

// An icon: pixels whose high byte is their opacity.
class Icon : public Object
{
public:
    explicit Icon(Surface image) : surface(std::move(image)) {}

    const Surface surface;
};

} // namespace kx::gdi

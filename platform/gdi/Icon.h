#pragma once

#include "platform/gdi/Object.h"
#include "platform/gdi/Surface.h"

#include <memory>
#include <utility>

namespace kx::gdi {

// An icon: pixels whose high byte is their opacity.
class Icon final : public Object
{
public:
    static constexpr Kind KIND = Kind::Icon;

    // Brought to a size, 0 for the image's own; null for a lack of memory. A pixel is the mean of those that
    // it stands for.
    static std::shared_ptr<Icon> Make(Surface image, SIZE size);
    explicit Icon(Surface image) : Object(KIND), surface(std::move(image)) {}

    const Surface surface;
};

} // namespace kx::gdi

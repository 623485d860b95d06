#include "platform/gdi/Canvas.h"

namespace kx::gdi {

void Canvas::MakeReady(const RECT& part) const
{
    surface.Own(part);
    if (rest) rest->Leave(surface, part);
}

} // namespace kx::gdi

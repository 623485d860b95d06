#include "platform/window/Desktop.h"

#include "platform/window/headless/HeadlessDesktop.h"

namespace kx::window {

Desktop& Desktop::Instance()
{
    return HeadlessDesktop::Instance();
}

} // namespace kx::window

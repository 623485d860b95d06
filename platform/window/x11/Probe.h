#pragma once

#include "platform/UniqueFd.h"

#include <chrono>

namespace kx::window::x11 {

// Calls a server before xcb does, which would wait for a silent one without end. The call
// stays open, so that a server that starts anew when its last client goes doesn't, until the object ends.
class Probe
{
public:
    // A null name is DISPLAY's. Waits no longer than the limit, but for the resolving of a machine's name.
    Probe(const char* pszDisplay, std::chrono::milliseconds limit);

    // It is there, or may be, and has said nothing. One that refuses isn't silent.
    bool IsSilent() const noexcept { return m_bSilent; }

private:
    UniqueFd m_socket;
    bool m_bSilent = false;
};

} // namespace kx::window::x11

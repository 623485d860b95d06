#pragma once

#include "internal/IniSnapshot.h"
#include "platform/profile/IniStore.h"

#include <string>
#include <string_view>

namespace kx::profile {

// The file that a thread read last while its IniSnapshot lives.
struct KeptIni
{
    std::string name;
    unsigned generation = 0; // of paths and code page
    IniPtr ini;

    // The thread's own; null without an IniSnapshot. Never destroyed with the thread, so that statics may
    // read.
    static KeptIni*& OfThread() noexcept;

    IniPtr Find(std::string_view wanted, unsigned nowGeneration) const noexcept
    {
        return generation == nowGeneration && name == wanted ? ini : nullptr;
    }
};

} // namespace kx::profile

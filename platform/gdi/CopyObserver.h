#pragma once

#include "include/platform/Host.h"

#include <atomic>

namespace kx::gdi {

inline constinit std::atomic<bool> g_bCopyObserved{false};

void TellCopyObserver(const KXHost::CopyRecord& copy) noexcept;

// Tells the host's observer of a block copy; one load when there is none.
inline void TellCopy(const KXHost::CopyRecord& copy) noexcept
{
    if (g_bCopyObserved.load(std::memory_order_acquire)) [[unlikely]]
        TellCopyObserver(copy);
}

} // namespace kx::gdi

#pragma once

#include "include/KXExport.h"

#include <atomic>
#include <csignal>

namespace kx::sync {

// The stack on which the calling thread's signal handlers run for the object's life, so that they run even
// when the thread's own stack is used up. A thread that has one of at least this size keeps that. Made and
// ended by its thread.
class AlternateStack
{
public:
    KX_API AlternateStack() noexcept;
    AlternateStack(const AlternateStack&) = delete;
    AlternateStack& operator=(const AlternateStack&) = delete;
    KX_API ~AlternateStack();

    // False for lack of memory.
    bool IsThere() const noexcept { return m_bThere; }

private:
    stack_t m_before{};
    void* m_memory = nullptr; // a page that faults, then the stack
    bool m_bThere = false;
};

// Gives the calling thread an alternate stack until it ends; false for lack of memory. Allocates at a
// thread's first call.
bool GuardThread() noexcept;

namespace detail {

inline constinit std::atomic<bool> g_bGuardCallers{false};
[[gnu::tls_model("initial-exec")]] inline constinit thread_local bool t_bGuarded = false;

} // namespace detail

// From now on GuardCaller guards.
inline void GuardCallers() noexcept
{
    detail::g_bGuardCallers.store(true, std::memory_order_relaxed);
}

// Guards a thread that the library didn't make, and that hasn't asked for it, at its first call of what calls
// this, once there is a crash filter. Not for calls that a filter makes.
inline void GuardCaller() noexcept
{
    if (detail::t_bGuarded || !detail::g_bGuardCallers.load(std::memory_order_relaxed)) return;
    detail::t_bGuarded = true;
    GuardThread();
}

} // namespace kx::sync

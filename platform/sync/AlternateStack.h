#pragma once

#include <csignal>

namespace kx::sync {

// The stack on which the calling thread's signal handlers run for the object's life, so that they run even
// when the thread's own stack is used up. A thread that has one of at least this size keeps that. Made and
// ended by its thread.
class AlternateStack
{
public:
    AlternateStack() noexcept;
    AlternateStack(const AlternateStack&) = delete;
    AlternateStack& operator=(const AlternateStack&) = delete;
    ~AlternateStack();

    // False for lack of memory.
    bool IsThere() const noexcept { return m_bThere; }

private:
    stack_t m_before{};
    void* m_memory = nullptr; // a page that faults, then the stack
    bool m_bThere = false;
};

} // namespace kx::sync

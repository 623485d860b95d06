#include "platform/sync/AlternateStack.h"

#include "platform/sync/PerThread.h"

#include <sys/mman.h>
#include <unistd.h>

namespace kx::sync {

namespace {

// Several times the need of a crash filter, the calls that it makes and the processor's state. Pages that are
// never touched cost no memory.
constexpr std::size_t kSize = 256 * 1024;

std::size_t PageSize() noexcept
{
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

AlternateStack::AlternateStack() noexcept
{
    if (sigaltstack(nullptr, &m_before) != 0) return;
    m_bThere = !(m_before.ss_flags & SS_DISABLE) && m_before.ss_size >= kSize;
    if (m_bThere) return;
    const std::size_t page = PageSize();
    void* const memory = mmap(nullptr, page + kSize, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED) return;
    stack_t mine{};
    mine.ss_sp = static_cast<char*>(memory) + page;
    mine.ss_size = kSize;
    m_bThere = mprotect(memory, page, PROT_NONE) == 0 && sigaltstack(&mine, nullptr) == 0;
    if (m_bThere)
        m_memory = memory;
    else
        munmap(memory, page + kSize);
}

// The system keeps the stack while a handler runs on it, and so does this.
AlternateStack::~AlternateStack()
{
    if (!m_memory) return;
    const std::size_t page = PageSize();
    stack_t now{};
    const bool bMine = sigaltstack(nullptr, &now) == 0 && now.ss_sp == static_cast<char*>(m_memory) + page;
    if (bMine && sigaltstack(&m_before, nullptr) != 0) return;
    munmap(m_memory, page + kSize);
}

bool GuardThread() noexcept
try {
    static PerThread<AlternateStack> stacks;
    return stacks.Get().IsThere();
} catch (const std::bad_alloc&) {
    return false;
}

} // namespace kx::sync

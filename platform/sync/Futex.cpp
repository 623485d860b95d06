#include "platform/sync/Futex.h"

#include <cerrno>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kx::sync {

static_assert(sizeof(Word) == sizeof(std::uint32_t) && Word::is_always_lock_free);

namespace {

void Futex(const Word& word, int nOperation, std::uint32_t value, const std::timespec* pEnd,
           std::uint32_t mask) noexcept
{
    const int nSaved = errno;
    syscall(SYS_futex, &word, nOperation | FUTEX_PRIVATE_FLAG, value, pEnd, nullptr, mask);
    errno = nSaved;
}

} // namespace

void FutexWait(const Word& word, std::uint32_t seen, std::uint32_t mask) noexcept
{
    Futex(word, FUTEX_WAIT_BITSET, seen, nullptr, mask);
}

void FutexWaitUntil(const Word& word, std::uint32_t seen, const std::timespec& end) noexcept
{
    Futex(word, FUTEX_WAIT_BITSET, seen, &end, kAnySleeper);
}

void FutexWake(const Word& word, int nCount, std::uint32_t mask) noexcept
{
    Futex(word, FUTEX_WAKE_BITSET, static_cast<std::uint32_t>(nCount), nullptr, mask);
}

} // namespace kx::sync

#include "platform/crash/HeapFree.h"

#include "include/platform/Crash.h"
#include "platform/Errno.h"
#include "platform/UniqueFd.h"
#include "platform/module/Door.h"
#include "platform/sync/Futex.h"
#include "platform/time/Clock.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kx::crash {

namespace {

// A descriptor that a filter gives up where the process has no other left. Its identity is kept, as a client
// that closes whatever it finds may have given the number to a file of its own.
int g_reserve = -1;
struct stat g_reserved;

bool GiveUpReserve() noexcept
{
    struct stat now;
    const bool bOurs = g_reserve >= 0 && fstat(g_reserve, &now) == 0 && now.st_dev == g_reserved.st_dev &&
                       now.st_ino == g_reserved.st_ino;
    return bOurs && close(std::exchange(g_reserve, -1)) == 0;
}

using std::chrono::days;
using std::chrono::sys_days;

constexpr std::int64_t kDay = 86'400;
constexpr std::int64_t kFirst = 10'957 * kDay; // 2000-01-01 UTC
constexpr std::int64_t kStep = 14 * kDay;      // no zone changes its mind twice within this

struct Change
{
    std::int64_t from;
    long offset; // seconds east of UTC
};

constinit std::array<Change, 256> g_changes{};
constinit std::atomic<std::size_t> g_count{0};

long OffsetAt(std::int64_t nTime) noexcept
{
    std::tm fields{};
    return time::ToLocal(nTime, fields) ? fields.tm_gmtoff : 0;
}

// The first second behind `before` with another offset than that had; `after` has another.
std::int64_t FindChange(std::int64_t before, std::int64_t after) noexcept
{
    const long offset = OffsetAt(before);
    while (after - before > 1) {
        const std::int64_t middle = before + (after - before) / 2;
        (OffsetAt(middle) == offset ? before : after) = middle;
    }
    return after;
}

long PreparedOffset(std::int64_t nTime) noexcept
{
    const auto end = g_changes.begin() + static_cast<std::ptrdiff_t>(g_count.load(std::memory_order_acquire));
    if (end == g_changes.begin()) return 0;
    const auto next =
        std::upper_bound(g_changes.begin() + 1, end, nTime,
                         [](std::int64_t time, const Change& change) { return time < change.from; });
    return (next - 1)->offset;
}

// Local time by what was read: the system's conversion takes the time zone's lock. Heap-free; false where the
// year doesn't fit the record.
bool ToLocalPrepared(std::int64_t nTime, std::tm& fields) noexcept
{
    constexpr std::int64_t kLimit = 32'000LL * 365 * kDay; // within what the calendar below counts
    if (nTime < -kLimit || nTime > kLimit) return false;
    const std::int64_t local = nTime + PreparedOffset(nTime);
    const auto day = std::chrono::floor<days>(std::chrono::seconds(local));
    const auto second = static_cast<int>(local - day.count() * kDay);
    fields = time::FieldsOf(sys_days(day), second);
    return true;
}

constinit sync::Word g_owner{0}; // the thread's number, 0 for none

// A forked child has none of its parent's threads.
[[maybe_unused]] const int g_atFork = pthread_atfork(nullptr, nullptr, [] { g_owner.store(0); });

std::uint32_t Self() noexcept
{
    return static_cast<std::uint32_t>(gettid());
}

// A filter that ends the process never leaves, and then the process ends here by its signal.
void AwaitFilter() noexcept
{
    for (std::uint32_t owner; (owner = g_owner.load(std::memory_order_acquire)) != 0 && owner != Self();)
        sync::FutexWait(g_owner, owner);
}

// The lowest number that a library may use runs last of its destructors.
[[gnu::destructor(101)]] void AwaitFilterLast() noexcept
{
    AwaitFilter();
}

} // namespace

void PrepareDescriptor() noexcept
{
    if (g_reserve >= 0) return;
    g_reserve = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (g_reserve >= 0) fstat(g_reserve, &g_reserved);
}

void PrepareZone() noexcept
{
    tzset();
    const std::int64_t last = std::max<std::int64_t>(std::time(nullptr), kFirst) + 3653 * kDay;
    std::size_t count = 0;
    g_changes[count++] = {INT64_MIN, OffsetAt(kFirst)};
    for (std::int64_t time = kFirst; time < last && count < g_changes.size(); time += kStep) {
        const long offset = OffsetAt(time + kStep);
        if (offset != g_changes[count - 1].offset)
            g_changes[count++] = {FindChange(time, time + kStep), offset};
    }
    g_count.store(count, std::memory_order_release);
}

bool InFilter() noexcept
{
    const std::uint32_t owner = g_owner.load(std::memory_order_relaxed);
    return owner != 0 && owner == Self();
}

bool EnterFilter() noexcept
{
    const std::uint32_t self = Self();
    for (;;) {
        std::uint32_t owner = 0;
        if (g_owner.compare_exchange_strong(owner, self, std::memory_order_acquire)) {
            module::ShutDoors(true);
            return true;
        }
        if (owner == self) return false;
        sync::FutexWait(g_owner, owner);
    }
}

void LeaveFilter() noexcept
{
    module::ShutDoors(false);
    g_owner.store(0, std::memory_order_release);
    sync::FutexWake(g_owner);
}

void HoldExits() noexcept
{
    [[maybe_unused]] static const int nRegistered = std::atexit(AwaitFilter);
}

} // namespace kx::crash

// Opens without waiting, as the file may be a pipe that nobody writes to.
bool KXCrash::IsFileReadable(const char* pszPath) noexcept
{
    kx::crash::PathText path;
    if (!kx::crash::ToSystem(pszPath, path)) return false;
    constexpr int nFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    kx::UniqueFd file(open(path.Data(), nFlags));
    if (!file && (errno == EMFILE || errno == ENFILE) && kx::crash::InFilter() && kx::crash::GiveUpReserve())
        file.Reset(open(path.Data(), nFlags));
    struct stat info;
    return file && fstat(file.Get(), &info) == 0 && !S_ISDIR(info.st_mode);
}

int KXCrash::MakeDirectory(const char* pszPath) noexcept
{
    kx::crash::PathText path;
    if (!kx::crash::ToSystem(pszPath, path)) return 0;
    return mkdir(path.Data(), 0777) == 0 ? 1 : kx::FailErrno();
}

// The virtual clock has a lock, which its moving alone holds: on the system's nothing can be held here.
bool KXCrash::GetLocalTime(std::tm* pTime) noexcept
{
    if (!pTime) return false;
    const std::int64_t now = kx::time::WallSeconds();
    return kx::crash::InFilter() ? kx::crash::ToLocalPrepared(now, *pTime) : kx::time::ToLocal(now, *pTime);
}

#include "platform/profile/FileStamp.h"

#include <cstdint>

namespace kx::profile {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

std::int64_t Nanoseconds(const timespec& time) noexcept
{
    return static_cast<std::int64_t>(time.tv_sec) * kSecond + time.tv_nsec;
}

std::int64_t Tick() noexcept
{
    static const std::int64_t tick = [] {
        timespec resolution{};
        return clock_getres(CLOCK_REALTIME_COARSE, &resolution) == 0 ? Nanoseconds(resolution)
                                                                     : kSecond / 100;
    }();
    return tick;
}

} // namespace

// The time of change is the one that counts: it can't be set by hand. A file system whose times have no
// fraction counts by seconds, or by two.
bool FileStamp::IsSettled(const timespec& now) const noexcept
{
    const bool bWholeSeconds = modified.tv_nsec == 0 && changed.tv_nsec == 0;
    const std::int64_t unsettled = bWholeSeconds ? 2 * kSecond + 2 * Tick() : 2 * Tick();
    return Nanoseconds(now) - Nanoseconds(changed) > unsettled;
}

timespec FileTime() noexcept
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

} // namespace kx::profile

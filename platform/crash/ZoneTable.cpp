#include "platform/crash/HeapFree.h"

#include "platform/time/BrokenTime.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <climits>

namespace kx::crash {

namespace {

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

} // namespace

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

bool ToLocalPrepared(std::int64_t nTime, std::tm& fields) noexcept
{
    constexpr std::int64_t kLimit = 32'000LL * 365 * kDay; // within what the calendar below counts
    if (nTime < -kLimit || nTime > kLimit) return false;
    const std::int64_t local = nTime + PreparedOffset(nTime);
    const auto day = std::chrono::floor<days>(std::chrono::seconds(local));
    const auto second = static_cast<int>(local - day.count() * kDay);
    const std::chrono::year_month_day date{sys_days(day)};
    fields = {};
    fields.tm_year = static_cast<int>(date.year()) - 1900;
    fields.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    fields.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    fields.tm_hour = second / 3600;
    fields.tm_min = second / 60 % 60;
    fields.tm_sec = second % 60;
    fields.tm_wday = static_cast<int>(std::chrono::weekday(sys_days(day)).c_encoding());
    fields.tm_yday = static_cast<int>((sys_days(day) - sys_days(date.year() / 1 / 1)).count());
    fields.tm_isdst = -1;
    return true;
}

} // namespace kx::crash

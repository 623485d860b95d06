#pragma once

#include "include/KXExport.h"
#include "include/platform/String.h"
#include "include/platform/Types.h"

#include <chrono>
#include <cstdint>
#include <ctime>

// The one clock: everything in the library that tells the time or waits for it asks here. It is the system's,
// or a virtual one that stands still until the host moves it. Its monotonic time goes on from where it is
// when the host changes from one to the other, so a deadline keeps its meaning and runs on the clock of the
// day. Any thread; works from static destructors too.
//
// Waiting for a deadline: see Alarm.h.

namespace kx::time {

// A moment of the monotonic time.
struct Monotonic
{
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<Monotonic>;
    static constexpr bool is_steady = true;
    KX_API static time_point now() noexcept;
};
using Moment = Monotonic::time_point;

// The deadline of a wait without a time-out.
inline constexpr Moment kNever = Moment::max();

inline Moment Now() noexcept
{
    return Monotonic::now();
}

// The moment that many milliseconds from now; kNever for INFINITE.
Moment DeadlineAfter(DWORD dwMilliseconds) noexcept;

// Seconds since 1970-01-01 00:00:00 UTC: a few nanoseconds. It may lag behind WallTime by one tick of the
// system's timer, as the times of files do.
std::int64_t WallSeconds() noexcept;
// The same to the nanosecond.
std::timespec WallTime() noexcept;

// Whether the host made the clock virtual.
KX_API bool IsVirtual() noexcept;
// A moment of the monotonic time as the system's CLOCK_MONOTONIC, while the clock is the real one.
std::timespec ToSystem(Moment moment) noexcept;

// Sleep's part in a virtual clock that sleepers move themselves: moves it and returns true; else false.
bool SkipSleep(DWORD dwMilliseconds);

// ---- An instant's calendar fields

// Local time of an instant; false when its year doesn't fit the record.
bool ToLocal(std::int64_t nTime, std::tm& fields) noexcept;

// The fields of a second of a day, without a zone. Heap-free.
std::tm FieldsOf(std::chrono::sys_days day, int nSecond) noexcept;

// The fields in a strftime form. Names are English, whatever the program's locale, so that the text is one of
// the code page. What is no conversion stays as it stands. The empty string for null, and for a form whose
// text passes every sensible length (widths in the thousands).
CString FormatFields(const std::tm& fields, const char* pszFormat);

} // namespace kx::time

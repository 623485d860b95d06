#pragma once

#include "include/KXExport.h"
#include "include/platform/Types.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

// The one table of what public handles name. A handle is a slot's number and the slot's generation, which
// counts up at each removal: a handle that is closed, stale or invented finds nothing until its slot was used
// anew 2^32 times. Handles lie above 2^32, apart from every predefined number. Any thread.

namespace kx {

enum class HandleKind : std::uint8_t
{
    None,
    Waitable, // events, threads and processes
    Search,
    RegistryKey,
    Service, // and the manager's
    Module,
    Resource,
    Desktop,
    Window,
    Drawing, // device contexts, bitmaps, fonts and their like
};

// Counts what KXHost::LiveHandles tells: for objects that clients hold without a handle of the table.
class KX_API LiveHandle
{
public:
    LiveHandle() noexcept;
    LiveHandle(const LiveHandle&) = delete;
    LiveHandle& operator=(const LiveHandle&) = delete;
    ~LiveHandle();
};

// The operations below without types. What is stored under a kind is a pointer to that kind's class.
HANDLE AddHandle(HandleKind kind, std::shared_ptr<void> object, bool bCounted) noexcept;
KX_API std::shared_ptr<void> FindHandle(HandleKind kind, const void* handle) noexcept;
std::shared_ptr<void> RemoveHandle(HandleKind kind, const void* handle) noexcept;
void ReserveHandle(std::size_t nPlace, HandleKind kind, std::shared_ptr<void> object) noexcept;

// Names the object, whose class T tells its kind by T::HANDLE_KIND and is the same in all of these. Null,
// with ERROR_NOT_ENOUGH_MEMORY, for lack of memory. One that isn't counted belongs to the library and not to
// the caller, like a stock object.
template <class T>
HANDLE AddHandle(std::shared_ptr<T> object, bool bCounted = true) noexcept
{
    return AddHandle(T::HANDLE_KIND, std::move(object), bCounted);
}

// The object of a handle; null, with the last error unchanged, for a handle of nothing or of another kind.
template <class T>
std::shared_ptr<T> FindHandle(const void* handle) noexcept
{
    return std::static_pointer_cast<T>(FindHandle(T::HANDLE_KIND, handle));
}

// Ends the handle and gives what it named; null as above. Of several threads that try, one succeeds.
template <class T>
std::shared_ptr<T> RemoveHandle(const void* handle) noexcept
{
    return std::static_pointer_cast<T>(RemoveHandle(T::HANDLE_KIND, handle));
}

// Handles that are set aside for a crash filter, which may neither allocate nor wait for a lock: finding and
// removing one of these does neither. Their objects are never freed, and they aren't counted. Each keeps one
// value: a closed one names the next process that is started in its place.
inline constexpr std::size_t kReservedHandles = 4;

// Sets an object aside under a place below kReservedHandles, once for each, before any filter may run.
template <class T>
void ReserveHandle(std::size_t nPlace, std::shared_ptr<T> object) noexcept
{
    ReserveHandle(nPlace, T::HANDLE_KIND, std::move(object));
}

// Opens the handle of a place that an object was set aside for.
HANDLE OpenReservedHandle(std::size_t nPlace) noexcept;

} // namespace kx

#pragma once

#include "include/platform/Types.h"
#include "platform/Errno.h"
#include "platform/LiveHandles.h"
#include "platform/time/Clock.h"

#include <memory>
#include <new>
#include <optional>
#include <utility>

namespace kx::sync {

// What a handle of WaitForSingleObject and CloseHandle names. Any platform family may derive one and hand out
// its handle. While the handle is open the object holds itself; who needs it for longer (a waiting thread, a
// running one) holds it by shared_from_this.
class Waitable : public std::enable_shared_from_this<Waitable>
{
public:
    enum class Kind
    {
        Event,
        Thread,
        Process,
    };

    Waitable(const Waitable&) = delete;
    Waitable& operator=(const Waitable&) = delete;
    virtual ~Waitable() = default;

    // Makes an object of a derived class and opens its handle; null for lack of memory.
    template <class T, class... Args>
    static HANDLE Make(Args&&... args) noexcept
    {
        try {
            return std::make_shared<T>(std::forward<Args>(args)...)->Open();
        } catch (const std::bad_alloc&) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
    }

    // The open object of a handle; null, with ERROR_INVALID_HANDLE, for null and INVALID_HANDLE_VALUE.
    static Waitable* Of(HANDLE handle) noexcept;

    // Opens the handle, once; the object is in a shared_ptr already.
    HANDLE Open() noexcept;
    // Ends the handle, and the object with it if nobody else holds it.
    void Close() noexcept;

    Kind GetKind() const noexcept { return m_kind; }

    // Looks whether it is signalled, and takes a signal that releases one wait only.
    virtual bool TryTake() = 0;
    // Waits until that is so; false when the deadline came first.
    virtual bool WaitUntil(clock::Moment deadline) = 0;

protected:
    explicit Waitable(Kind kind) noexcept : m_kind(kind) {}

private:
    const Kind m_kind;
    std::optional<LiveHandle> m_open;
    std::shared_ptr<Waitable> m_self;
};

} // namespace kx::sync

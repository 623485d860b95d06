#pragma once

#include "platform/Handles.h"
#include "platform/time/Clock.h"

#include <memory>

namespace kx::threads {

// The object that a handle of WaitForSingleObject and CloseHandle names. A family may derive a class of its
// own and name its objects by AddHandle<Waitable>. A thread that waits shares the object, so its handle may
// be closed meanwhile.
class Waitable
{
public:
    static constexpr HandleKind HANDLE_KIND = HandleKind::Waitable;

    enum class Kind
    {
        Event,
        Thread,
        Process,
    };

    Waitable(const Waitable&) = delete;
    Waitable& operator=(const Waitable&) = delete;
    virtual ~Waitable() = default;

    // The object of a handle if it is of that class; null, with ERROR_INVALID_HANDLE, for any other handle.
    template <class T>
    static std::shared_ptr<T> FindAs(HANDLE handle) noexcept
    {
        auto object = FindHandle<Waitable>(handle);
        if (object && object->m_kind == T::KIND) return std::static_pointer_cast<T>(std::move(object));
        SetInvalidHandle();
        return nullptr;
    }

    // Looks whether it is signalled, and takes a signal that releases one wait only.
    virtual bool TryTake() = 0;
    // Waits until that is so; false when the deadline came first.
    virtual bool WaitUntil(time::Moment deadline) = 0;

protected:
    explicit Waitable(Kind kind) noexcept : m_kind(kind) {}

private:
    static void SetInvalidHandle() noexcept;

    const Kind m_kind;
};

} // namespace kx::threads

#include "platform/threads/Waitable.h"

#include "include/platform/Sync.h"
#include "platform/Errno.h"
#include "platform/threads/Signal.h"

namespace kx::threads {

namespace {

class Event final : public Waitable
{
public:
    static constexpr Kind KIND = Kind::Event;

    Event(Signal::Reset reset, bool bSet) noexcept : Waitable(KIND), m_signal(reset, bSet) {}

    void Set() noexcept { m_signal.Set(); }
    bool TryTake() override { return m_signal.TryTake(); }
    bool WaitUntil(time::Moment deadline) override { return m_signal.WaitUntil(deadline); }

private:
    Signal m_signal;
};

} // namespace

void Waitable::SetInvalidHandle() noexcept
{
    SetLastError(ERROR_INVALID_HANDLE);
}

} // namespace kx::threads

using kx::threads::Event;
using kx::threads::Signal;
using kx::threads::Waitable;

HANDLE CreateEventA(void*, int bManualReset, int bInitialState, const char*)
try {
    const auto reset = bManualReset ? Signal::Reset::Manual : Signal::Reset::Automatic;
    return kx::AddHandle<Waitable>(std::make_shared<Event>(reset, bInitialState != 0));
} catch (...) {
    return kx::NoMemory();
}

int SetEvent(HANDLE hEvent) noexcept
{
    const auto event = Waitable::FindAs<Event>(hEvent);
    if (!event) return 0;
    event->Set();
    return 1;
}

DWORD WaitForSingleObject(HANDLE hObject, DWORD dwMilliseconds)
{
    const auto object = kx::FindHandle<Waitable>(hObject);
    if (!object) {
        SetLastError(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    if (object->TryTake()) return WAIT_OBJECT_0;
    if (dwMilliseconds == 0) return WAIT_TIMEOUT;
    return object->WaitUntil(kx::time::DeadlineAfter(dwMilliseconds)) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

int CloseHandle(HANDLE hObject) noexcept
{
    return kx::RemoveHandle<Waitable>(hObject) ? 1 : kx::Fail(ERROR_INVALID_HANDLE);
}

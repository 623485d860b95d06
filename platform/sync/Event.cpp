#include "include/platform/Sync.h"

#include "platform/Errno.h"
#include "platform/sync/Signal.h"
#include "platform/sync/Waitable.h"

namespace {

using kx::sync::Signal;
using kx::sync::Waitable;

class Event final : public Waitable
{
public:
    Event(Signal::Reset reset, bool bSet) noexcept : Waitable(Kind::Event), m_signal(reset, bSet) {}

    static Signal* SignalOf(HANDLE handle) noexcept
    {
        Waitable* object = Waitable::Of(handle);
        if (object && object->GetKind() == Kind::Event) return &static_cast<Event*>(object)->m_signal;
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }

    bool TryTake() override { return m_signal.TryTake(); }
    bool WaitUntil(kx::clock::Moment deadline) override { return m_signal.WaitUntil(deadline); }

private:
    Signal m_signal;
};

} // namespace

HANDLE CreateEventA(void*, int bManualReset, int bInitialState, const char*)
{
    const auto reset = bManualReset ? Signal::Reset::Manual : Signal::Reset::Automatic;
    return Waitable::Make<Event>(reset, bInitialState != 0);
}

int SetEvent(HANDLE hEvent) noexcept
{
    Signal* signal = Event::SignalOf(hEvent);
    if (!signal) return 0;
    signal->Set();
    return 1;
}

int ResetEvent(HANDLE hEvent) noexcept
{
    Signal* signal = Event::SignalOf(hEvent);
    if (!signal) return 0;
    signal->Clear();
    return 1;
}

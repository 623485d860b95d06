#include "platform/sync/Waitable.h"

#include "include/platform/Sync.h"

namespace kx::sync {

Waitable* Waitable::Of(HANDLE handle) noexcept
{
    if (handle && handle != INVALID_HANDLE_VALUE) return static_cast<Waitable*>(handle);
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

HANDLE Waitable::Open() noexcept
{
    m_open.emplace();
    m_self = shared_from_this();
    return this;
}

void Waitable::Close() noexcept
{
    m_open.reset();
    const auto last = std::move(m_self);
}

} // namespace kx::sync

DWORD WaitForSingleObject(HANDLE hObject, DWORD dwMilliseconds)
{
    auto* object = kx::sync::Waitable::Of(hObject);
    if (!object) return WAIT_FAILED;
    if (object->TryTake()) return WAIT_OBJECT_0;
    if (dwMilliseconds == 0) return WAIT_TIMEOUT;
    const auto keep = object->shared_from_this();
    return object->WaitUntil(kx::clock::DeadlineAfter(dwMilliseconds)) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

int CloseHandle(HANDLE hObject) noexcept
{
    auto* object = kx::sync::Waitable::Of(hObject);
    if (!object) return 0;
    object->Close();
    return 1;
}

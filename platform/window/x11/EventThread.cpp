#include "platform/window/x11/EventThread.h"

#include "platform/sync/AlternateStack.h"
#include "platform/window/Chores.h"
#include "platform/window/x11/Events.h"
#include "platform/window/x11/NoSignals.h"

namespace kx::window::x11 {

namespace {

void Serve(const std::shared_ptr<Session>& session)
{
    const sync::AlternateStack alternate;
    Events(session).Run();
    if (session->leaving) return;
    for (const HWND hWnd : Access(session)->own.Handles())
        PostChore(hWnd, Chore::Destroy);
}

} // namespace

std::thread StartEvents(std::shared_ptr<Session> session)
{
    const NoSignals blocked;
    return std::thread(Serve, std::move(session));
}

} // namespace kx::window::x11

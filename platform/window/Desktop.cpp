#include "platform/window/Desktop.h"
#include "internal/Debug.h"
#include "platform/sync/Mutex.h"

#include "platform/Immortal.h"
#include "platform/screen/Screen.h"
#include "platform/window/HeadlessDesktop.h"
#include "platform/window/WindowTable.h"
#include "platform/window/X11Desktop.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace kx::window {

namespace {

std::atomic<Desktop*> g_desktop{nullptr};

Desktop& Choose()
{
    constexpr std::chrono::milliseconds limit(KXHost::ANSWER_LIMIT);
    const char* pszDisplay = std::getenv("DISPLAY");
    auto display = pszDisplay && *pszDisplay ? X11Desktop::Open(pszDisplay, limit) : nullptr;
    if (!display) return HeadlessDesktop::Instance();
    return X11Desktop::Keep(std::move(display));
}

void TellNoDisplay() noexcept
{
    const char* pszDisplay = std::getenv("DISPLAY");
    if (pszDisplay && *pszDisplay)
        debug::Tell("window", "display %s doesn't answer; windows appear on a desktop in memory", pszDisplay);
    else
        debug::Tell("window", "DISPLAY names no display; windows appear on a desktop in memory");
}

} // namespace

Desktop& Desktop::Instance()
{
    if (Desktop* chosen = g_desktop.load(std::memory_order_acquire)) return *chosen;
    static Immortal<sync::Mutex> choosing;
    {
        const sync::MutexLock lock(choosing.Get());
        if (Desktop* chosen = g_desktop.load()) return *chosen;
        Desktop& choice = Choose();
        Desktop* none = nullptr;
        if (!g_desktop.compare_exchange_strong(none, &choice)) choice.Leave(); // the host was faster
    }
    if (g_desktop.load() == &HeadlessDesktop::Instance()) TellNoDisplay();
    return *g_desktop.load();
}

bool Desktop::Use(Desktop& desktop)
{
    Desktop* old = nullptr;
    {
        const sync::MutexLock lock(gdi::pixelLock);
        if (!WindowTable::Instance().Handles().empty()) return false;
        old = g_desktop.exchange(&desktop);
        screen::Screen::Instance().Forget();
    }
    if (old && old != &desktop) old->Leave();
    return true;
}

} // namespace kx::window

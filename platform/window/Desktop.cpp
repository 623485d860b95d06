#include "platform/window/Desktop.h"

#include "internal/Debug.h"
#include "platform/Immortal.h"
#include "platform/module/Door.h"
#include "platform/screen/Screen.h"
#include "platform/sync/Mutex.h"
#include "platform/window/HeadlessDesktop.h"
#include "platform/window/WindowTable.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

KX_DOOR(x11, kx::window::Functions);

namespace kx::window {

namespace {

std::atomic<Desktop*> g_desktop{nullptr};

bool IsDisplayNamed() noexcept
{
    const char* pszDisplay = std::getenv("DISPLAY");
    return pszDisplay && *pszDisplay;
}

Desktop& Choose() noexcept
try {
    constexpr std::chrono::milliseconds limit(KXHost::ANSWER_LIMIT);
    auto display = IsDisplayNamed() ? Desktop::Open(nullptr, limit) : nullptr;
    if (!display) return HeadlessDesktop::Instance();
    return Desktop::Keep(std::move(display));
} catch (const std::bad_alloc&) {
    return HeadlessDesktop::Instance();
}

void TellNoDisplay() noexcept
{
    if (IsDisplayNamed())
        debug::Tell("window", "display %s doesn't answer; windows appear on a desktop in memory",
                    std::getenv("DISPLAY"));
    else
        debug::Tell("window", "DISPLAY names no display; windows appear on a desktop in memory");
}

// The desktops of displays that are, or were, the process's.
struct Kept
{
    sync::Mutex lock;
    std::vector<std::unique_ptr<Desktop>> desktops KX_GUARDED_BY(lock);
};

// No thread may run in the library once it has been unloaded.
struct LeaveAtUnload
{
    ~LeaveAtUnload()
    {
        const sync::MutexLock lock(The<Kept>().lock);
        for (const auto& desktop : The<Kept>().desktops)
            desktop->Disconnect();
    }
} g_leaveAtUnload;

} // namespace

std::unique_ptr<Desktop> Desktop::Open(const char* pszDisplay, std::chrono::milliseconds limit)
{
    const Functions* const functions = g_door.Open();
    return functions ? functions->open(pszDisplay, limit) : nullptr;
}

Desktop& Desktop::Keep(std::unique_ptr<Desktop> desktop)
{
    const sync::MutexLock lock(The<Kept>().lock);
    return *The<Kept>().desktops.emplace_back(std::move(desktop));
}

Desktop& Desktop::Instance() noexcept
{
    if (Desktop* chosen = g_desktop.load(std::memory_order_acquire)) return *chosen;
    static Immortal<sync::Mutex> choosing;
    if (IsDisplayNamed()) g_door.Open(); // what it tells is heard without a lock
    {
        const sync::MutexLock lock(choosing.Get());
        if (Desktop* chosen = g_desktop.load()) return *chosen;
        Desktop& choice = Choose();
        Desktop* none = nullptr;
        if (!g_desktop.compare_exchange_strong(none, &choice)) choice.Disconnect(); // the host was faster
    }
    if (g_desktop.load() == &HeadlessDesktop::Instance()) TellNoDisplay();
    return *g_desktop.load();
}

std::shared_ptr<screen::Backing> Desktop::Root(SIZE size)
{
    return screen::Screen::Instance().Root(size, [](const RECT& rect, gdi::Surface& root) -> gdi::Surface& {
        screen::pixelLock.AssertHeld();
        return Instance().Look(rect, root);
    });
}

bool Desktop::Use(Desktop& desktop)
{
    Desktop* old = nullptr;
    {
        const sync::MutexLock lock(screen::pixelLock);
        if (!WindowTable::Instance().Handles().empty()) return false;
        old = g_desktop.exchange(&desktop);
        screen::Screen::Instance().Forget();
    }
    if (old && old != &desktop) old->Disconnect();
    return true;
}

} // namespace kx::window

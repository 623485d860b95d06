#include "platform/gdi/Rect.h"
#include "platform/module/Door.h"
#include "platform/screen/Screen.h"
#include "platform/sync/AlternateStack.h"
#include "platform/sync/Mutex.h"
#include "platform/window/Desktop.h"
#include "platform/window/Window.h"
#include "platform/window/WindowState.h"
#include "platform/window/WindowTable.h"
#include "platform/window/x11/Events.h"
#include "platform/window/x11/Properties.h"

#include <algorithm>
#include <csignal>
#include <future>
#include <initializer_list>
#include <memory>
#include <new>
#include <optional>
#include <pthread.h>
#include <string>
#include <system_error>
#include <thread>

namespace kx::window::x11 {

namespace {

constexpr std::uint32_t kPlain = 0xF0F0F0;

std::atomic<int> g_forks{0};
[[maybe_unused]] const int g_atFork = pthread_atfork(nullptr, nullptr, [] { ++g_forks; });

// Keeps the process's signals, but for those of a thread's own faults, from a thread that is started within
// the scope: their handlers run where the program expects them.
class NoSignals
{
public:
    NoSignals() noexcept
    {
        sigset_t set;
        sigfillset(&set);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
            sigdelset(&set, fault);
        pthread_sigmask(SIG_BLOCK, &set, &m_old);
    }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &m_old, nullptr); }

private:
    sigset_t m_old;
};

void Serve(const std::shared_ptr<Session>& session)
{
    const sync::AlternateStack alternate;
    try {
        Events(session).Run();
        if (session->leaving) return;
        for (const HWND hWnd : Access(session)->own.Handles())
            PostChore(hWnd, Chore::Destroy);
    } catch (const std::bad_alloc&) {
        // Windows that can't be told live on unseen.
    }
}

// The thread that serves the session's events. It ends with the connection; unless that was wanted, all
// windows end then. Throws std::system_error.
std::thread StartEvents(std::shared_ptr<Session> session)
{
    const NoSignals blocked;
    return std::thread(Serve, std::move(session));
}

// xcb waits for a server without end. It does so on a thread of its own, which is left to itself when it
// takes too long and throws away what it then gets.
std::shared_ptr<Session> OpenSession(const char* pszDisplay, std::chrono::milliseconds limit)
{
    const std::optional name = pszDisplay ? std::optional<std::string>(pszDisplay) : std::nullopt;
    std::packaged_task<std::shared_ptr<Session>()> open([name, limit] {
        const sync::AlternateStack stack;
        auto connection = Connection::Open(name ? name->c_str() : nullptr);
        return connection ? std::make_shared<Session>(std::move(connection), limit) : nullptr;
    });
    auto session = open.get_future();
    {
        const NoSignals blocked;
        std::thread(std::move(open)).detach();
    }
    return session.wait_for(limit) == std::future_status::ready ? session.get() : nullptr;
}

// The screen of an X server. What is asked of it goes through one connection, and a thread of its own makes
// messages and chores of what the server tells. When the server is lost its windows end by chores, and every
// operation from then on is harmless.
//
// Windows of other processes can be found, but there is no channel for messages to them: what is posted or
// sent to one fails.
class X11Desktop : public Desktop
{
public:
    // Throws where no thread can be had.
    explicit X11Desktop(std::shared_ptr<Session> session)
        : m_process(g_forks), m_session(std::move(session)), m_events(StartEvents(m_session))
    {
    }
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;
    ~X11Desktop() override { X11Desktop::Disconnect(); }

    SIZE Size() const noexcept override
    {
        const auto session = Current();
        return session ? session->connection->GetView().reach : SIZE{};
    }
    SIZE Monitor() const noexcept override
    {
        const auto session = Current();
        return session ? session->connection->GetView().monitor : SIZE{};
    }
    // The thread ends by itself once the connection does.
    void Disconnect() noexcept override
    {
        if (m_process != g_forks) return;
        std::shared_ptr<Session> session;
        std::thread events;
        {
            const sync::MutexLock lock(m_lock);
            session.swap(m_session);
            events.swap(m_events);
        }
        if (!session) return;
        session->leaving = true;
        session->connection->Shut();
        events.join();
    }

    bool Create(HWND hWnd, const CREATESTRUCTA& create) override
    {
        const Access server(Current());
        return server && server->own.Create(hWnd, create);
    }
    void Show(HWND hWnd, bool bVisible) override
    {
        const Access server(Current());
        if (!server) return;
        server->own.Show(hWnd, bVisible);
        if (!bVisible) server->pixels.EndFade(hWnd);
    }
    void SetText(HWND hWnd, const char* pszText) override
    {
        OfWindow(hWnd, [=](const Connection& c, xcb_window_t id) { SetTitle(c, id, pszText); });
    }
    void Place(Window& window, const RECT& rect) override
    {
        const Access server(Current());
        window.SetRect(rect);
        if (!server) return;
        server->own.Place(window.Handle(), rect);
        server->pixels.EndFade(window.Handle());
    }
    void Stack(HWND hWnd, Order order) override
    {
        if (const Access server(Current()); server) server->own.Stack(hWnd, order);
    }
    void Shape(HWND hWnd, const gdi::PixelRegion* region) override
    {
        OfWindow(hWnd, [=](const Connection& c, xcb_window_t id) { SetShape(c, id, region); });
    }
    // Without a compositor the window is blended here, over what the screen showed before it did.
    void SetOpacity(HWND hWnd, BYTE opacity) override
    {
        const auto window = WindowTable::Instance().Find(hWnd);
        const Access server(Current());
        if (!server || !window) return;
        if (server->connection.HasCompositor()) {
            server->pixels.EndFade(hWnd);
            const xcb_window_t id = server->own.NumberOf(hWnd);
            if (id) SetOpacityOf(server->connection, id, opacity);
        } else if (server->pixels.Fade(*window, opacity))
            server->Put(*window, WithinItself(window->Rect()));
    }
    void SetOwner(HWND hWnd, HWND hOwner) override
    {
        if (const Access server(Current()); server) server->own.SetOwner(hWnd, hOwner);
    }
    void SetCursor(HWND hWnd, HCURSOR hCursor) override
    {
        if (const Access server(Current()); server) server->own.SetCursor(hWnd, hCursor);
    }
    void SetCaret(HWND hWnd, POINT place) override
    {
        if (const Access server(Current()); server) server->own.SetCaret(hWnd, place);
    }
    void SetIcon(HWND hWnd, const gdi::Surface* pixels) override
    {
        OfWindow(hWnd, [=](const Connection& c, xcb_window_t id) { x11::SetIcon(c, id, pixels); });
    }
    void Focus(HWND hWnd) override
    {
        if (const Access server(Current()); server) server->own.Focus(hWnd);
    }
    bool HasFocus(HWND hWnd) const override
    {
        const Access server(Current());
        return server && server->own.HasFocus(hWnd);
    }
    void Destroy(HWND hWnd) noexcept override
    {
        const Access server(Current());
        if (!server) return;
        server->own.Destroy(hWnd);
        server->pixels.EndFade(hWnd);
    }

    void Present(const Window& window, const RECT& rect) override
    try {
        if (const Access server(Current()); server) server->Put(window, rect);
    } catch (const std::bad_alloc&) {
        // The window keeps its pixels: the next that is drawn, or uncovered, shows them.
    }
    gdi::Surface& Look(const RECT& rect, gdi::Surface& root) override KX_REQUIRES(screen::pixelLock)
    {
        const RECT area = gdi::Cut(rect, {0, 0, root.Width(), root.Height()});
        auto part = ReadFreely(area);
        if (!m_seen || m_seen->Width() != root.Width() || m_seen->Height() != root.Height())
            m_seen = gdi::Surface::Make(root.Width(), root.Height());
        if (!part || !m_seen) return root;
        for (int y = 0; y < part->Height(); ++y)
            std::copy_n(part->Row(y), part->Width(), m_seen->Row(area.top + y) + area.left);
        return *m_seen;
    }

    std::vector<HWND> ForeignWindows() const override
    {
        const Access server(Current());
        return server ? server->foreign.List() : std::vector<HWND>();
    }
    std::optional<WindowFacts> FindForeign(HWND hWnd) const noexcept override
    {
        const Access server(Current());
        return server ? server->foreign.Find(hWnd) : std::nullopt;
    }
    bool PostForeign(HWND, const KXHost::SentMessage&) override { return false; }
    LRESULT SendForeign(HWND, const KXHost::SentMessage&) override { return 0; }

private:
    // Null once it has been left, and in a forked child, who would disturb its parent's connection.
    std::shared_ptr<Session> Current() const noexcept
    {
        if (m_process != g_forks) return nullptr;
        const sync::MutexLock lock(m_lock);
        return m_session;
    }
    // Calls `tell(connection, id)` if the server has such a window.
    template <class Tell>
    void OfWindow(HWND hWnd, Tell tell)
    {
        const Access server(Current());
        const xcb_window_t id = server ? server->own.NumberOf(hWnd) : 0;
        if (id) tell(server->connection, id);
    }
    // Reads it without the lock of the pixels, for the time that the server takes.
    std::optional<gdi::Surface> ReadFreely(const RECT& rect) const KX_REQUIRES(screen::pixelLock)
    {
        const sync::MutexUnlock unlock(screen::pixelLock);
        return Read(rect);
    }
    // Reads a rectangle as it is seen; gives nothing where it can't. A guest's root shows nothing of what a
    // person sees: it counts as plain.
    std::optional<gdi::Surface> Read(const RECT& rect) const
    {
        const Access server(Current());
        auto seen =
            server ? gdi::Surface::Make(rect.right - rect.left, rect.bottom - rect.top) : std::nullopt;
        if (!seen) return std::nullopt;
        if (!server->connection.IsGuest())
            return server->pixels.Get(rect, *seen) ? std::move(seen) : std::nullopt;
        for (int y = 0; y < seen->Height(); ++y)
            std::fill_n(seen->Row(y), seen->Width(), kPlain);
        return seen;
    }

    const int m_process; // counted by forks
    mutable sync::Mutex m_lock;
    std::shared_ptr<Session> m_session KX_GUARDED_BY(m_lock);
    std::thread m_events KX_GUARDED_BY(m_lock);
    std::optional<gdi::Surface> m_seen KX_GUARDED_BY(screen::pixelLock);
};

std::unique_ptr<Desktop> OpenDesktop(const char* pszDisplay, std::chrono::milliseconds limit)
try {
    auto session = OpenSession(pszDisplay, limit);
    return session ? std::make_unique<X11Desktop>(std::move(session)) : nullptr;
} catch (const std::system_error&) {
    return nullptr;
}

constexpr Functions kFunctions{OpenDesktop};

} // namespace

} // namespace kx::window::x11

KX_MODULE_ENTRY(x11, kx::window::x11::kFunctions)

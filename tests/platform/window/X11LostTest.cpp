// Servers that stop or go, at any moment.

#include "include/platform/MessageBox.h"
#include "platform/UniqueFd.h"
#include "tests/platform/window/X11Support.h"
#include "tests/support/RawServer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

using namespace test;
using testing::HasSubstr;

constexpr DWORD kLimit = 400; // milliseconds

// The way to an X server, up to a request: the n-th after the one by which the client finds out about
// keyboards. That and all later ones are lost, or with `bCloses` the server is. What was asked before is
// answered, but no sooner than another thread of the client's asks for something, so that two of them wait at
// the end.
class XRelay
{
public:
    XRelay(const XServer& server, int nRequest, bool bCloses)
        : m_socket("/tmp/.X11-unix/X" + server.Name().substr(1)),
          m_bCloses(bCloses),
          m_nLeft(nRequest),
          m_listener([this](Peer& client) { Serve(client); })
    {
    }

    // Gives the name that DISPLAY has for it.
    std::string Name() const
    {
        const std::string host = m_listener.Host();
        const std::size_t at = host.find(':') + 1;
        return host.substr(0, at) + std::to_string(std::stoi(host.substr(at)) - 6000);
    }
    bool HasEnded() const { return m_ended; }

private:
    int Connect() const
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        m_socket.copy(address.sun_path, sizeof address.sun_path - 1);
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_EQ(connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return fd;
    }
    // The length of the first request, or of what begins a connection; 0 if not all of it has come.
    std::size_t Length() const
    {
        const auto word = [&](std::size_t at) {
            std::uint16_t value = 0;
            if (m_ahead.size() >= at + 2) std::memcpy(&value, m_ahead.data() + at, 2);
            return std::size_t{value};
        };
        if (m_ahead.size() < (m_begun ? 4u : 12u)) return 0;
        const std::size_t length = !m_begun  ? 12 + ((word(6) + 3) & ~3u) + ((word(8) + 3) & ~3u)
                                   : word(2) ? word(2) * 4
                                             : (word(4) + (word(6) << 16)) * 4;
        return m_ahead.size() >= length ? length : 0;
    }
    bool IsLast()
    {
        if (m_bCounts) return m_nLeft-- == 0;
        m_bCounts = m_ahead.find("XKEYBOARD") == 8;
        return false;
    }
    void Serve(Peer& client)
    {
        const kx::UniqueFd upstream(Connect());
        Peer server(upstream.Get());
        bool bHeld = false;
        for (char block[0x10000];;) {
            pollfd ready[]{{client.Socket(), POLLIN, 0}, {bHeld ? -1 : upstream.Get(), POLLIN, 0}};
            if (poll(ready, 2, -1) < 0) return;
            if (ready[1].revents) {
                const ssize_t got = recv(upstream.Get(), block, sizeof block, 0);
                if (got <= 0 || !client.Send({block, static_cast<std::size_t>(got)})) return;
            }
            if (!ready[0].revents) continue;
            const ssize_t got = recv(client.Socket(), block, sizeof block, 0);
            if (got <= 0) return;
            if (m_ended) { // another thread's request
                if (std::exchange(bHeld, false) && m_bCloses) shutdown(upstream.Get(), SHUT_WR);
                continue;
            }
            m_ahead.append(block, static_cast<std::size_t>(got));
            for (std::size_t length; !m_ended && (length = Length()) > 0; m_ahead.erase(0, length)) {
                m_ended = bHeld = m_begun && IsLast();
                m_begun = true;
                if (!m_ended && !server.Send(std::string_view(m_ahead).substr(0, length))) return;
            }
        }
    }

    const std::string m_socket;
    const bool m_bCloses;
    int m_nLeft;
    bool m_bCounts = false;
    bool m_begun = false;
    std::string m_ahead;
    std::atomic<bool> m_ended{false};
    const RawServer m_listener;
};

struct X11LostTest : X11Test
{
    void SetUp() override { Begin(); }
    void Begin()
    {
        X11Test::Begin();
        Use(server->Name());
    }
    static void Use(const std::string& display)
    {
        ASSERT_TRUE(KXHost::UseMemoryDesktop());
        ASSERT_TRUE(KXHost::UseDisplay(display.c_str(), kLimit));
    }
};

// The thread of the display's events asks for the keyboard, and a window's thread for something else, when
// the server goes.
TEST_F(X11LostTest, TheServerMayGoWhileTheKeyboardIsAskedFor)
{
    constexpr int nRequests = 12; // the first of them, up to the keys' names
    for (const bool bCloses : {false, true}) {
        for (int n = 0; n < nRequests; ++n) {
            const XRelay relay(*server, n, bCloses);
            Use(relay.Name());
            ASSERT_TRUE(Soon([&] { return relay.HasEnded(); })) << n;
            const HWND hWnd = Make(nullptr, WS_POPUP | WS_VISIBLE);
            SeenAt(1, 1);
            EXPECT_TRUE(Pump([&] { return !IsWindow(hWnd); })) << n;
            EXPECT_TRUE(Pump([] { return !IsWindow(Make()); })) << n;
            ASSERT_TRUE(KXHost::UseMemoryDesktop()) << n;
        }
    }
}

// The way to it is the network's, over which no memory goes.
TEST_F(X11LostTest, AServerOfAnotherMachineIsSentItsPixels)
{
    const XRelay relay(*server, INT_MAX, true);
    Use(relay.Name());
    const SeenWindow window(*this, kRed, {0, 0, 300, 300});
}

// A server that says nothing any more holds nobody up for longer than it was given.
TEST_F(X11LostTest, AServerThatStopsIsGivenUp)
{
    SeenWindow window(*this, kRed, {0, 0, 300, 300});
    const WindowThread another;
    server->Stop();
    std::chrono::milliseconds longest{0};
    EXPECT_TRUE(Pump([&] {
        const auto begin = std::chrono::steady_clock::now();
        InvalidateRect(window.handle, nullptr, 0);
        UpdateWindow(window.handle);
        const auto took = std::chrono::steady_clock::now() - begin;
        longest = std::max(longest, std::chrono::duration_cast<std::chrono::milliseconds>(took));
        return !IsWindow(window.handle);
    }));
    EXPECT_TRUE(Soon([&] { return !IsWindow(another.Window()); }));
    EXPECT_THAT(window.heard, HasSubstr("destroy"));
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 640);
    EXPECT_EQ(SeenAt(5, 5), DESKTOP_COLOR);
    KXHost::TakeMessageBoxes();
    EXPECT_EQ(AfxMessageBox("nobody sees it"), IDOK);
    EXPECT_EQ(KXHost::TakeMessageBoxes().size(), 1u);
    EXPECT_GE(longest.count(), kLimit / 2);
    EXPECT_LT(longest.count(), 10 * kLimit);
}

// The work of a window's thread while the server stops or goes. `kill` is called somewhere within.
using Moment = std::function<void(const std::function<void()>& kill)>;

// Within the handler of one message of a window that is made, shown, painted, moved and ended.
Moment InHandlerOf(UINT nMsg)
{
    return [nMsg](const std::function<void()>& kill) {
        static Handler handler;
        handler = On(nMsg, [kill, nMsg](HWND h, WPARAM wParam) {
            kill();
            return DefWindowProcA(h, nMsg, wParam, 0);
        });
        const HWND hWnd = Make(&handler, WS_CAPTION);
        ShowWindow(hWnd, SW_SHOW);
        UpdateWindow(hWnd);
        Move(hWnd, 50, 60, 200, 100);
        EnableWindow(hWnd, 0);
        EnableWindow(hWnd, 1);
        DestroyWindow(hWnd);
    };
}

// In the middle of a fade, once so much of the window, of 255, is seen: at least, or where it is hidden at
// most.
Moment InFade(std::optional<XClient>& outside, int share, DWORD dwFlags)
{
    return [=, &outside](const std::function<void()>& kill) {
        ColorWindow window(kRed, {0, 0, 100, 100});
        const bool bHides = (dwFlags & AW_HIDE) != 0;
        if (bHides) AnimateWindow(window.handle, 0, AW_BLEND);
        std::thread killer([&] {
            Soon([&] {
                const int seen = GetRValue(outside->Pixel(50, 50));
                return bHides ? seen <= share : seen >= share;
            });
            kill();
        });
        AnimateWindow(window.handle, 2000, AW_BLEND | dwFlags);
        killer.join();
    };
}

struct X11MomentTest : X11LostTest, testing::WithParamInterface<bool>
{
};
INSTANTIATE_TEST_SUITE_P(Stops, X11MomentTest, testing::Bool());

TEST_P(X11MomentTest, TheServerMayGo)
{
    std::vector<Moment> moments{
        InFade(outside, 1, 0),
        InFade(outside, 128, 0),
        InFade(outside, 200, AW_HIDE),
        [&](const auto& kill) { // in the middle of a drag
            SeenWindow window(*this, kRed, {0, 0, 100, 100});
            outside->MoveMouse(50, 50);
            outside->Button(1, true);
            Pump([&] { return window.Heard("down"); });
            SetCapture(window.handle);
            outside->MoveMouse(70, 70);
            kill();
            for (int i = 0; i < 50; ++i)
                Move(window.handle, i, i, 100, 100);
            Pump([&] { return !IsWindow(window.handle); });
            EXPECT_EQ(GetCapture(), nullptr);
        },
        [&](const auto& kill) { // a message box is open
            std::thread killer([&] {
                Soon([&] { return outside->Find("test.platform.window") != 0; });
                kill();
            });
            AfxMessageBox("Really?");
            killer.join();
        },
        [&](const auto& kill) { // another thread is being asked
            const WindowThread other(On(kAsk, [&](HWND, WPARAM) {
                kill();
                return 7;
            }));
            SeenWindow window(*this, kRed, {0, 0, 100, 100});
            EXPECT_EQ(SendMessageA(other.Window(), kAsk, 0, 0), 7);
        },
        [&](const auto& kill) { // the screen is being read
            SeenAt(5, 5);
            kill();
            for (int i = 0; i < 20; ++i)
                SeenAt(i, i);
        },
        [&](const auto& kill) { // the windows of others are being walked
            for (int i = 0; i < 5; ++i)
                outside->Cover(0, 0, 10, 10, kBlue, 1);
            Walk([&](HWND) { return kill(), 1; });
        },
    };
    for (const UINT nMsg : {WM_NCCREATE, WM_CREATE, WM_SHOWWINDOW, WM_PAINT, WM_ERASEBKGND, WM_SETFOCUS,
                            WM_MOVE, WM_SIZE, WM_ENABLE, WM_KILLFOCUS, WM_DESTROY, WM_NCDESTROY})
        moments.push_back(InHandlerOf(nMsg));
    int n = 0;
    for (const Moment& moment : moments) {
        if (n++ > 0) Begin();
        bool gone = false;
        std::jthread asker; // a server that only stopped is known to be lost once someone asks it
        std::thread user([&] {
            moment([&] {
                if (std::exchange(gone, true)) return;
                if (!GetParam()) return server->Kill();
                server->Stop();
                asker = std::jthread([] { SeenAt(1, 1); });
            });
            // All that was made ends, and what is asked later is harmless.
            EXPECT_TRUE(Pump([&] { return !IsWindow(Make()); })) << n;
        });
        user.join();
        EXPECT_TRUE(gone) << n;
        ASSERT_TRUE(Soon([] { return KXHost::UseMemoryDesktop(); })) << n;
    }
    KXHost::TakeMessageBoxes();
}

} // namespace

// Screens of more than one monitor, of fine dots, and servers that stop or go.

#include "include/KXTipWnd.h"
#include "include/platform/MessageBox.h"
#include "tests/platform/window/X11Support.h"

#include <cstdlib>
#include <gmock/gmock.h>

namespace {

using namespace test;
using testing::HasSubstr;

class X11ScreenTest : public X11Test
{
protected:
    void SetUp() override
    {
        unsetenv("KX_SCALE");
        Begin();
    }
    // The same server, as one finds it who comes now.
    void Reopen(DWORD dwLimit = KXHost::ANSWER_LIMIT)
    {
        ASSERT_TRUE(KXHost::UseMemoryDesktop());
        ASSERT_TRUE(KXHost::UseDisplay(server->Name().c_str(), dwLimit));
    }
    static RECT DesktopRect()
    {
        RECT rect{};
        GetWindowRect(GetDesktopWindow(), &rect);
        return rect;
    }
};

TEST_F(X11ScreenTest, TheDesktopIsThePrimaryMonitor)
{
    outside->Cover(0, 0, 240, 480, kGreen);
    outside->AddMonitor("left", 0, 0, 240, 480, false);
    outside->AddMonitor("main", 240, 0, 400, 300, true);
    Reopen();
    EXPECT_EQ(DesktopRect(), (RECT{0, 0, 400, 300}));
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 400);
    EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), 300);
    ColorWindow window(kRed, {10, 20, 110, 120}, WS_POPUP, "window");
    ShowSeen(window, kRed, 250, 20);
    EXPECT_NE(outside->Pixel(249, 20), kRed);
    outside->MoveMouse(255, 26);
    EXPECT_TRUE(Pump([&] { return window.heard.find("move 0 5,6;") != std::string::npos; })) << window.heard;
    const HDC desktop = GetDC(nullptr);
    EXPECT_EQ(GetPixel(desktop, 10, 20), kRed);
    EXPECT_NE(GetPixel(desktop, 9, 20), kRed);
    ReleaseDC(nullptr, desktop);

    // Another program moves it, to the left monitor.
    outside->Place(outside->Find("window"), 100, 50, 100, 100);
    RECT rect{};
    EXPECT_TRUE(Pump([&] {
        return GetWindowRect(window.handle, &rect) && rect == RECT{-140, 50, -40, 150};
    }));

    window.heard.clear();
    outside->AddMonitor("main", 200, 0, 440, 480, true);
    EXPECT_TRUE(Pump([&] { return window.heard.find("display 32 440,480;") != std::string::npos; }))
        << window.heard;
    EXPECT_EQ(DesktopRect(), (RECT{0, 0, 440, 480}));
    EXPECT_TRUE(Pump([&] { return GetWindowRect(window.handle, &rect) && rect == RECT{-100, 50, 0, 150}; }));
    EXPECT_THAT(window.heard, HasSubstr("place 0 -100,50;"));
}

TEST_F(X11ScreenTest, WindowsAreEnlargedWhereDotsAreFine)
{
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 640);
    outside->SetResources("*color: red\nXft.dpi:\t192\n");
    Reopen();
    EXPECT_EQ(DesktopRect(), (RECT{0, 0, 320, 240}));
    ColorWindow window(kRed, {10, 20, 61, 71}, WS_POPUP, "window");
    ShowSeen(window, kRed, 20, 40);
    EXPECT_EQ(outside->PlaceOf(outside->Find("window")), (RECT{20, 40, 122, 142}));
    EXPECT_TRUE(Pump([&] { return outside->Pixel(121, 141) == kRed; }));
    const HDC own = GetDC(window.handle);
    SetPixel(own, 3, 5, kBlue);
    ReleaseDC(window.handle, own);
    EXPECT_TRUE(Await([&] { return outside->Pixel(27, 51) == kBlue; }));
    for (const POINT at : {POINT{26, 50}, POINT{27, 50}, POINT{26, 51}})
        EXPECT_EQ(outside->Pixel(at.x, at.y), kBlue);
    for (const POINT at : {POINT{25, 50}, POINT{28, 50}, POINT{26, 49}, POINT{26, 52}})
        EXPECT_EQ(outside->Pixel(at.x, at.y), kRed);
    const HDC desktop = GetDC(nullptr);
    EXPECT_EQ(GetPixel(desktop, 13, 25), kBlue);
    EXPECT_EQ(GetPixel(desktop, 14, 25), kRed);
    ReleaseDC(nullptr, desktop);
    outside->MoveMouse(27, 51);
    EXPECT_TRUE(Pump([&] { return window.heard.find("move 0 3,5;") != std::string::npos; })) << window.heard;
    // A size that is no multiple is covered to its last pixel.
    outside->Place(outside->Find("window"), 21, 40, 131, 60);
    RECT rect{};
    EXPECT_TRUE(Pump([&] { return GetWindowRect(window.handle, &rect) && rect == RECT{10, 20, 76, 50}; }));
    EXPECT_TRUE(Pump([&] { return outside->Pixel(151, 99) == kRed; }));
}

TEST_F(X11ScreenTest, TheEnvironmentHasTheLastWordOfTheScale)
{
    outside->SetResources("Xft.dpi: 192\n");
    for (const auto& [word, width] : {std::pair{"1", 640}, {"3", 214}, {"9", 214}, {"nonsense", 640}}) {
        setenv("KX_SCALE", word, 1);
        Reopen();
        EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), width) << word;
    }
    unsetenv("KX_SCALE");
}

// A server that says nothing any more holds nobody up for longer than it was given.
TEST_F(X11ScreenTest, AServerThatStopsIsGivenUp)
{
    constexpr DWORD limit = 400;
    Reopen(limit);
    ColorWindow window(kRed, {0, 0, 300, 300});
    const WindowThread another;
    ShowSeen(window, kRed, 50, 50);
    // Whoever hears of a key has asked the server for all that it needs to know of the keyboard.
    const xcb_keycode_t key = outside->KeyOf('a');
    outside->Key(key, true);
    outside->Key(key, false);
    ASSERT_TRUE(Pump([&] { return window.heard.find("keyup") != std::string::npos; })) << window.heard;
    server->Stop();
    std::chrono::milliseconds longest{0};
    const bool ended = Pump([&] {
        const auto begin = std::chrono::steady_clock::now();
        InvalidateRect(window.handle, nullptr, 0);
        UpdateWindow(window.handle);
        const auto took = std::chrono::steady_clock::now() - begin;
        longest = std::max(longest, std::chrono::duration_cast<std::chrono::milliseconds>(took));
        return !IsWindow(window.handle) && !IsWindow(another.Window());
    });
    EXPECT_TRUE(ended);
    EXPECT_THAT(window.heard, HasSubstr("destroy"));
    EXPECT_GE(longest.count(), limit / 2);
    EXPECT_LT(longest.count(), 10 * limit);
}

// The work of a window's thread while the server goes. `kill` is called somewhere within.
using Moment = std::function<void(const std::function<void()>& kill)>;

const Handler* Killer(const std::function<void()>& kill, UINT nMsg)
{
    static Handler handler;
    handler = On(nMsg, [kill, nMsg](HWND hWnd, WPARAM wParam) {
        kill();
        return DefWindowProcA(hWnd, nMsg, wParam, 0);
    });
    return &handler;
}

// Within the handler of one message of a window that is made, shown, painted, moved and ended.
Moment InHandlerOf(UINT nMsg)
{
    return [nMsg](const std::function<void()>& kill) {
        const HWND hWnd = Make(Killer(kill, nMsg), WS_CAPTION);
        ShowWindow(hWnd, SW_SHOW);
        UpdateWindow(hWnd);
        test::Move(hWnd, 50, 60, 200, 100);
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
            Await([&] {
                const int seen = GetRValue(outside->Pixel(50, 50));
                return bHides ? seen <= share : seen >= share;
            });
            kill();
        });
        AnimateWindow(window.handle, 2000, AW_BLEND | dwFlags);
        killer.join();
    };
}

TEST_F(X11ScreenTest, TheServerMayGoAtAnyMoment)
{
    const auto inFade = [&](int share, DWORD dwFlags) { return InFade(outside, share, dwFlags); };
    const Moment moments[] = {
        InHandlerOf(WM_NCCREATE),
        InHandlerOf(WM_CREATE),
        InHandlerOf(WM_SHOWWINDOW),
        InHandlerOf(WM_PAINT),
        InHandlerOf(WM_ERASEBKGND),
        InHandlerOf(WM_SETFOCUS),
        InHandlerOf(WM_MOVE),
        InHandlerOf(WM_SIZE),
        InHandlerOf(WM_ENABLE),
        InHandlerOf(WM_KILLFOCUS),
        InHandlerOf(WM_DESTROY),
        InHandlerOf(WM_NCDESTROY),
        inFade(1, 0),
        inFade(128, 0),
        inFade(200, AW_HIDE),
        [&](const auto& kill) { // in the middle of a drag
            ColorWindow window(kRed, {0, 0, 100, 100});
            ShowSeen(window, kRed, 50, 50);
            outside->MoveMouse(50, 50);
            outside->Button(1, true);
            Pump([&] { return window.heard.find("down") != std::string::npos; });
            SetCapture(window.handle);
            outside->MoveMouse(70, 70);
            kill();
            for (int i = 0; i < 50; ++i)
                test::Move(window.handle, i, i, 100, 100);
            Pump([&] { return !IsWindow(window.handle); });
            EXPECT_EQ(GetCapture(), nullptr);
        },
        [&](const auto& kill) { // a message box is open
            std::thread killer([&] {
                Await([&] { return outside->Find("test.platform.window") != 0; });
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
            ColorWindow window(kRed, {0, 0, 100, 100});
            ShowSeen(window, kRed, 50, 50);
            EXPECT_EQ(SendMessageA(other.Window(), kAsk, 0, 0), 7);
        },
        [&](const auto& kill) { // the screen is being read
            const HDC desktop = GetDC(nullptr);
            GetPixel(desktop, 5, 5);
            kill();
            for (int i = 0; i < 20; ++i)
                GetPixel(desktop, i, i);
            ReleaseDC(nullptr, desktop);
        },
        [&](const auto& kill) { // the windows of others are being walked
            for (int i = 0; i < 5; ++i)
                outside->Cover(0, 0, 10, 10, kBlue, 1);
            static const std::function<void()>* then;
            then = &kill;
            const auto visit = [](HWND, long) {
                (*then)();
                return 1;
            };
            EnumDesktopWindows(nullptr, visit, 0);
        },
    };
    static_assert(std::size(moments) == 20);
    int n = 0;
    for (const Moment& moment : moments) {
        if (n++ > 0) Begin();
        bool killed = false;
        std::thread user([&] {
            moment([&] {
                if (!std::exchange(killed, true)) server->Kill();
            });
            // All that was made ends, and what is asked later is harmless.
            Pump([&] { return !IsWindow(Make()); });
        });
        user.join();
        EXPECT_TRUE(killed) << n;
        ASSERT_TRUE(Await([] { return KXHost::UseMemoryDesktop(); })) << n;
    }
    KXHost::TakeMessageBoxes();
}

} // namespace

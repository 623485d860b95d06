// Windows on an X server: what is seen of them, and what happens to them from outside.

#include "tests/platform/window/X11Support.h"
#include "tests/support/RawServer.h"

namespace {

using namespace test;
using testing::HasSubstr;

using X11WindowTest = X11Test;

// With shared memory, and on a server that can't share, nor knows monitors.
TEST_F(X11WindowTest, PixelsReachTheScreenAndComeBackFromIt)
{
    const std::vector<std::string> nothing{"-extension", "MIT-SHM", "-extension", "RANDR"};
    for (const std::vector<std::string>& options : {std::vector<std::string>{}, nothing}) {
        Begin("640x480x24", options);
        EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 640);
        EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), 480);
        const xcb_window_t below = outside->Cover(40, 40, 200, 200, kBlue);
        ColorWindow window(kRed, {50, 60, 150, 140});
        ShowWindow(window.handle, SW_SHOWNA);
        EXPECT_EQ(outside->Pixel(100, 100), kBlue) << "not painted yet";
        ShowSeen(window, kRed, 50, 60);
        EXPECT_EQ(outside->Pixel(149, 139), kRed);
        EXPECT_EQ(outside->Pixel(150, 139), kBlue);
        EXPECT_EQ(ReadFile("/proc/self/maps").find("memfd:kx-pixels") != std::string::npos, options.empty());

        EXPECT_EQ(SeenAt(50, 60), kRed);
        EXPECT_EQ(SeenAt(49, 60), kBlue);
        EXPECT_EQ(SeenAt(639, 479), RGB(0, 0, 0));

        const int paints = window.paints;
        const xcb_window_t above = outside->Cover(40, 40, 200, 200, kGreen);
        EXPECT_EQ(outside->Pixel(100, 100), kGreen);
        outside->Destroy(above);
        EXPECT_TRUE(Shows(50, 60, kRed));
        EXPECT_TRUE(Shows(149, 139, kRed));
        EXPECT_EQ(window.paints, paints) << "what is kept needs no painting";
        outside->Destroy(below);
        DestroyWindow(window.handle);
        EXPECT_TRUE(Shows(100, 100, RGB(0, 0, 0)));
        ASSERT_TRUE(KXHost::UseMemoryDesktop());
    }
}

TEST_F(X11WindowTest, AScreenOfOtherPixelsHasNoWindows)
{
    Begin("640x480x16");
    EXPECT_EQ(Make(), nullptr);
    EXPECT_EQ(SeenAt(5, 5), DESKTOP_COLOR);
    Begin("640x480x24", {"-cc", "5"}); // our masks, but each colour by a table
    EXPECT_EQ(Make(), nullptr);
}

TEST_F(X11WindowTest, TopmostPopupsStayAboveTheOthers)
{
    ColorWindow top(kRed, {0, 0, 100, 100}), next(kBlue, {50, 0, 150, 100}), third(kGreen, {60, 0, 160, 100});
    const auto order = [](const ColorWindow& window, HWND hAfter) {
        SetWindowPos(window.handle, hAfter, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
    };
    order(top, HWND_TOPMOST);
    ShowSeen(top, kRed, 75, 50);
    ShowSeen(next, kBlue, 125, 50);
    EXPECT_EQ(outside->Pixel(75, 50), kRed);
    ShowSeen(third, kGreen, 125, 50);
    order(third, HWND_BOTTOM);
    EXPECT_TRUE(Shows(125, 50, kBlue));
    EXPECT_EQ(outside->Pixel(75, 50), kRed);
    order(top, HWND_NOTOPMOST);
    order(next, HWND_TOP);
    EXPECT_TRUE(Shows(75, 50, kBlue));
}

TEST_F(X11WindowTest, AShapeCutsAWindow)
{
    outside->Cover(0, 0, 200, 200, kBlue);
    SeenWindow window(*this, kRed, {0, 0, 100, 100});
    SetWindowRgn(window.handle, CreateRectRgn(10, 10, 60, 60), 1);
    EXPECT_TRUE(Shows(9, 10, kBlue));
    EXPECT_TRUE(Shows(60, 59, kBlue));
    EXPECT_EQ(outside->Pixel(10, 10), kRed);
    EXPECT_EQ(outside->Pixel(59, 59), kRed);
    // Its numbers have 16 bits at the server.
    SetWindowRgn(window.handle, CreateRectRgn(20, 20, 65'558, 65'558), 1);
    EXPECT_TRUE(Shows(99, 99, kRed));
    EXPECT_EQ(outside->Pixel(19, 99), kBlue);
    SetWindowRgn(window.handle, CreateRectRgn(-65'528, -65'528, 50, 50), 1);
    EXPECT_TRUE(Shows(50, 49, kBlue));
    EXPECT_EQ(outside->Pixel(0, 0), kRed);
    EXPECT_EQ(outside->Pixel(49, 49), kRed);
    SetWindowRgn(window.handle, nullptr, 1);
    EXPECT_TRUE(Shows(99, 99, kRed));
}

TEST_F(X11WindowTest, WindowsAreClosedMovedAndEndedFromOutside)
{
    ColorWindow closed(kRed, {0, 0, 50, 50}, WS_CAPTION, "closed");
    ColorWindow ended(kRed, {100, 0, 150, 50}, WS_CAPTION, "ended");
    ColorWindow moved(kRed, {200, 0, 250, 50}, WS_CAPTION, "moved");
    for (ColorWindow* window : {&closed, &ended, &moved})
        ShowWindow(window->handle, SW_SHOWNA);
    ASSERT_TRUE(Shows(225, 25, kRed));

    outside->AskToClose(outside->Find("closed"));
    EXPECT_TRUE(Pump([&] { return !IsWindow(closed.handle); }));
    EXPECT_THAT(closed.heard, HasSubstr("close 0 0,0;destroy"));
    outside->Destroy(outside->Find("ended"));
    EXPECT_TRUE(Pump([&] { return !IsWindow(ended.handle); }));
    EXPECT_THAT(ended.heard, Not(HasSubstr("close")));
    EXPECT_THAT(ended.heard, HasSubstr("destroy"));

    const auto place = [&](int x, int y, int cx, int cy) {
        moved.heard.clear();
        outside->Place(outside->Find("moved"), x, y, cx, cy);
        EXPECT_TRUE(Pump([&] { return !moved.heard.empty(); }));
        return moved.heard;
    };
    EXPECT_EQ(place(300, 100, 80, 70), "place 0 300,100;size 0 80,70;");
    EXPECT_TRUE(Shows(379, 169, kRed)) << "what is new gets painted";
    EXPECT_EQ(PlaceOf(moved.handle), (RECT{300, 100, 380, 170}));
    EXPECT_EQ(place(300, 100, 90, 60), "size 0 90,60;"); // and only what changed
    EXPECT_EQ(place(310, 100, 90, 60), "place 0 310,100;");
}

// The owner's own wish is the last word, whatever the server still has to tell of earlier ones.
TEST_F(X11WindowTest, APlaceChosenHereStands)
{
    SeenWindow window(*this, kRed, {0, 0, 50, 50}, WS_POPUP, "window");
    window.heard.clear();
    for (int i = 1; i <= 100; ++i) {
        Move(window.handle, i, i, 50 + i, 50);
        ASSERT_EQ(PlaceOf(window.handle), (RECT{i, i, 50 + 2 * i, 50 + i}));
    }
    Move(window.handle, 10, 10, 0, 0);
    Move(window.handle, -100'000, -100'000, 200'000, 200'000);
    EXPECT_TRUE(Soon([&] {
        return outside->PlaceOf(outside->Find("window")) == RECT{-0x7FFF, -0x7FFF, 0, 0};
    }));
    Move(window.handle, 100, 100, 60, 60);
    EXPECT_TRUE(Shows(159, 159, kRed));
    EXPECT_EQ(PlaceOf(window.handle), (RECT{100, 100, 160, 160}));
}

// Its owner and a manager place it at the same time, again and again.
TEST_F(X11WindowTest, WhereAWindowLiesIsKnownWhoeverPlacedItLast)
{
    SeenWindow window(*this, kRed, {0, 0, 50, 50}, WS_CAPTION, "window");
    const xcb_window_t id = outside->Find("window");
    outside->Frame(id, outside->Cover(5, 7, 600, 470, kBlue));
    for (int i = 1; i <= 500; ++i) {
        std::thread manager([&] { outside->Place(id, i % 300, 10, 60, 60); });
        Move(window.handle, i % 300, 20, 50, 50);
        manager.join();
        ASSERT_TRUE(Pump([&] { return PlaceOf(window.handle) == outside->PlaceOf(id); })) << i;
    }
}

// The thread is busy, and its queue full, while the server tells of the windows.
TEST_F(X11WindowTest, NewsOfTheServerComeThroughAFullQueue)
{
    const WindowThread another; // what happens to it shows that what came before has been told
    SetWindowTextA(another.Window(), "another");
    SeenWindow window(*this, kRed, {0, 0, 50, 50}, WS_CAPTION, "window");
    const auto fill = [&] {
        for (int i = 0; i < 10'000; ++i)
            EXPECT_TRUE(PostMessage(window.handle, WM_NULL, 0, 0));
        EXPECT_FALSE(PostMessage(window.handle, WM_NULL, 0, 0));
    };
    fill();
    window.heard.clear();
    const xcb_window_t id = outside->Find("window");
    for (int i = 1; i <= 20; ++i)
        outside->Place(id, i, 0, 50 + i, 50);
    outside->Place(id, 20, 0, 70, 60);
    outside->Place(outside->Find("another"), 300, 300, 10, 10);
    EXPECT_TRUE(Soon([&] { return PlaceOf(another.Window()) == RECT{300, 300, 310, 310}; }));
    EXPECT_TRUE(Shows(89, 59, kRed)) << window.heard;
    EXPECT_EQ(window.heard, "place 0 20,0;size 0 70,60;") << "and all in one";

    fill();
    server->Kill();
    EXPECT_TRUE(Soon([&] { return !IsWindow(another.Window()); }));
    EXPECT_TRUE(Pump([&] { return !IsWindow(window.handle); }));
}

TEST_F(X11WindowTest, WindowsOfOtherProcessesAreListed)
{
    const ColorWindow own(kRed, {0, 0, 50, 50}, WS_CAPTION);
    ShowWindow(own.handle, SW_SHOWNA);
    const xcb_window_t id = outside->Cover(0, 100, 50, 50, kBlue, 1);
    outside->Cover(0, 200, 50, 50, kBlue); // doesn't tell whose it is
    const auto walk = [] {
        std::vector<HWND> found;
        EXPECT_TRUE(Walk([&](HWND hWnd) { return found.push_back(hWnd), 1; }));
        return found;
    };
    const std::vector<HWND> found = walk();
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0], own.handle);
    DWORD process = 0;
    GetWindowThreadProcessId(found[1], &process);
    EXPECT_EQ(process, 1u);
    EXPECT_TRUE(IsWindowVisible(found[1]));
    EXPECT_EQ(walk(), found) << "the number stays";
    EXPECT_FALSE(PostMessage(found[1], WM_USER, 0, 0));
    EXPECT_EQ(SendMessageA(found[1], WM_USER, 0, 0), 0);
    const xcb_window_t managed = outside->Cover(0, 300, 50, 50, kBlue, 2);
    EXPECT_EQ(walk().size(), 3u);
    outside->SetManaged({managed});
    ASSERT_EQ(walk().size(), 2u) << "the manager's list is the shorter way";
    GetWindowThreadProcessId(walk()[1], &process);
    EXPECT_EQ(process, 2u);
    outside->SetManaged({id});
    EXPECT_EQ(walk(), found);
    outside->Destroy(id);
    EXPECT_TRUE(Soon([&] { return !IsWindow(found[1]); }));
    EXPECT_EQ(walk(), std::vector{own.handle});
    outside->Cover(0, 100, 50, 50, kBlue, 1, id);           // another one, whose number is the old one's
    EXPECT_TRUE(Soon([&] { return !IsWindow(found[1]); })); // once the end is told
    const std::vector<HWND> again = walk();
    ASSERT_EQ(again.size(), 2u);
    EXPECT_TRUE(IsWindow(again[1]));
}

TEST_F(X11WindowTest, AnotherDesktopIsChosenOnlyWithoutWindows)
{
    {
        const ColorWindow window(kRed, {0, 0, 50, 50});
        EXPECT_FALSE(KXHost::UseMemoryDesktop());
        EXPECT_FALSE(KXHost::UseDisplay(server->Name().c_str()));
        EXPECT_FALSE(KXHost::IsMemoryDesktop());
    }
    EXPECT_FALSE(KXHost::UseDisplay(":nonsense"));
    const RawServer silent([](Peer& peer) { peer.AwaitClose(); });
    const std::string port = silent.Host().substr(silent.Host().find(':') + 1);
    const std::string name = "127.0.0.1:" + std::to_string(std::stoi(port) - 6000);
    EXPECT_FALSE(KXHost::UseDisplay(name.c_str(), 50));
    EXPECT_EQ(silent.Connections(), 1) << "it took the call and said nothing";
    EXPECT_FALSE(KXHost::IsMemoryDesktop());
}

// While a process ends, the main thread's windows are gone before its static objects.
TEST_F(X11WindowTest, DisplayIsChosenWhereItAnswersAndLeftWithTheProcess)
{
    const auto run = [](const std::string& display, const char* expected) {
        // Memory that a thread of the parent's holds has no owner in the forked process.
        const std::string noLeakCheck = "ASAN_OPTIONS=detect_leaks=0:intercept_strndup=0";
        EXPECT_EQ(RunChild("WindowExitChild", {expected}, {"DISPLAY=" + display, noLeakCheck}), "")
            << expected;
    };
    run(server->Name(), "display");
    run(":nonsense", "memory");
    run("", "memory");
}

} // namespace

// Scenes of a user on an X server: a message box, and windows that fade.

#include "include/platform/MessageBox.h"
#include "tests/platform/window/X11Support.h"

#include <malloc.h>

namespace {

using namespace test;

struct X11SceneTest : X11Test
{
    // Red, green and blue, each within a few steps.
    bool Looks(int x, int y, COLORREF color)
    {
        const COLORREF seen = outside->Pixel(x, y);
        const auto far = [&](int shift) {
            return std::abs(static_cast<int>(seen >> shift & 0xFF) - static_cast<int>(color >> shift & 0xFF));
        };
        return std::max({far(0), far(8), far(16)}) <= 6;
    }
};

// A thread whose calls wait for the display; it is known to do so when the system has put it to sleep.
class WaitingThread
{
public:
    explicit WaitingThread(const std::function<void()>& call)
        : m_thread([this, call] {
              m_id = gettid();
              call();
          })
    {
        EXPECT_TRUE(Soon([&] { return m_id != 0; }));
        EXPECT_TRUE(Soon([&] { return State() == 'S'; }));
    }

private:
    char State() const
    {
        std::string text;
        std::getline(std::ifstream("/proc/self/task/" + std::to_string(m_id) + "/stat"), text);
        const std::size_t at = text.rfind(')');
        return at == std::string::npos ? '?' : text[at + 2];
    }

    std::atomic<pid_t> m_id{0};
    std::jthread m_thread;
};

// A server that answers nobody holds up the calls that need an answer, and none that draws or only tells it.
TEST_F(X11SceneTest, OnlyACallThatNeedsAnAnswerWaitsForTheServer)
{
    const SeenWindow window(*this, kRed, {0, 0, 100, 50});
    const Paper paper(40, 20, 'W');
    TextOutA(paper, 0, 0, "a", 1); // so that the font is there
    const HDC dc = GetDC(window.handle);
    const Desktop desktop;
    std::optional<XClient> busy(server->Name());
    busy->Grab();
    {
        const WaitingThread look([&] { GetPixel(desktop, 1, 1); });
        const WaitingThread list([] { Walk([](HWND) { return 1; }); });
        const auto others = std::async(std::launch::async, [&] {
            TextOutA(paper, 0, 0, "text", 4);
            TextOutA(dc, 0, 0, "text", 4);
            SetWindowTextA(window.handle, "title");
        });
        EXPECT_EQ(others.wait_for(std::chrono::seconds(3)), std::future_status::ready);
        busy.reset();
    }
    ReleaseDC(window.handle, dc);
}

TEST_F(X11SceneTest, AMessageBoxWaitsForItsAnswerOrItsThreadsEnd)
{
    const std::function<void(WindowThread&)> answers[] = {
        [&](auto&) { outside->TypeSymbol(0xFF0D); },
        [&](auto&) { outside->AskToClose(outside->Find("test.platform.window")); },
        [&](auto&) { outside->Destroy(outside->Find("test.platform.window")); },
        [&](auto&) { outside->ClickAt(320, 270); },
        [](auto& thread) { thread.Join(); }, // by WM_QUIT, which also the loop around the box is to hear
    };
    for (const auto& answer : answers) {
        const Handler ask = On(kAsk, [](HWND, WPARAM) { return AfxMessageBox("one\ntwo & three"); });
        WindowThread thread(ask);
        PostMessage(thread.Window(), kAsk, 0, 0);
        // In the middle of the screen, with its button's edge and face.
        for (const COLORREF color : {RGB(0, 120, 215), RGB(225, 225, 225)})
            ASSERT_TRUE(Soon([&] {
                int y = 200;
                while (y < 280 && outside->Pixel(320, y) != color)
                    ++y;
                return y < 280;
            }));
        EXPECT_TRUE(outside->Property(outside->Find("test.platform.window"), "_NET_WM_STATE").size() == 4);
        EXPECT_EQ(SendMessageA(thread.Window(), kPing, 0, 0), 1) << "what is sent meanwhile is served";
        answer(thread);
        EXPECT_TRUE(Soon([&] { return !outside->Find("test.platform.window"); }));
    }
    EXPECT_TRUE(KXHost::TakeMessageBoxes().empty());
}

// Whether something composes windows by their opacity or not.
struct X11FadeTest : X11SceneTest, testing::WithParamInterface<bool>
{
};
INSTANTIATE_TEST_SUITE_P(Compositor, X11FadeTest, testing::Bool());

TEST_P(X11FadeTest, AWindowFadesInAndOut)
{
    std::optional<Program> compositor;
    const std::vector<std::string> picom{"picom", "--config", "/dev/null", "--backend", "xrender"};
    if (GetParam()) compositor.emplace(picom, std::vector{"DISPLAY=" + server->Name()});
    ASSERT_TRUE(Soon([&] { return outside->HasOwner("_NET_WM_CM_S0") == GetParam(); }));
    outside->Cover(0, 0, 640, 480, RGB(0, 0, 0));
    const VirtualClock clock;
    const std::jthread user([] {
        const ColorWindow window(RGB(255, 255, 0), {220, 190, 420, 290});
        EXPECT_TRUE(AnimateWindow(window.handle, 3'000, AW_BLEND));
        EXPECT_TRUE(AnimateWindow(window.handle, 3'000, AW_BLEND | AW_HIDE));
    });
    for (const unsigned quarter : {1u, 2u, 3u, 4u, 3u, 2u, 1u, 0u}) {
        ASSERT_TRUE(Soon([] { return KXHost::ClockWaiters() > 0; }));
        KXHost::AdvanceClock(750);
        const unsigned level = quarter * 255 / 4;
        for (const POINT corner : {POINT{220, 190}, POINT{419, 289}})
            EXPECT_TRUE(Soon([&] { return Looks(corner.x, corner.y, RGB(level, level, 0)); })) << quarter;
        EXPECT_TRUE(Looks(219, 190, 0));
        EXPECT_TRUE(Looks(420, 289, 0));
    }
}

// Blending needs to know what lies below, which is no longer seen once the window is.
TEST_F(X11SceneTest, AWindowThatIsSeenStaysOpaque)
{
    const VirtualClock clock;
    const SeenWindow window(*this, kRed, {0, 0, 100, 100});
    const xcb_window_t cover = outside->Cover(0, 0, 100, 100, kGreen);
    const std::jthread user([&] {
        EXPECT_TRUE(Soon([] { return KXHost::ClockWaiters() > 0; }));
        outside->Destroy(cover);
        EXPECT_TRUE(Soon([&] { return outside->Pixel(50, 50) == kRed; }));
        KXHost::AdvanceClock(1'000);
    });
    AnimateWindow(window.handle, 1'000, AW_BLEND);
}

// A megabyte each.
TEST_F(X11SceneTest, WhatLiesBelowABlendedWindowIsLeftWithIt)
{
    const auto inUse = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
    const auto blend = [] {
        const HWND hWnd = Make();
        Move(hWnd, 0, 0, 600, 400);
        AnimateWindow(hWnd, 0, AW_BLEND);
    };
    InThread(blend); // and its window ends with the thread
    const std::size_t before = inUse();
    for (int i = 0; i < 20; ++i)
        InThread(blend);
    EXPECT_LT(inUse(), before + 10'000'000);
}

// Input to the window behind a box doesn't reach it, but its timers and paints go on.
TEST_F(X11SceneTest, AMessageBoxKeepsTheOtherWindowsFromInput)
{
    int nAsked = 0;
    ColorWindow main(kGreen, {0, 0, 200, 200}, WS_CAPTION, "main");
    const Handler ask = On(WM_LBUTTONUP, [&](HWND, WPARAM) {
        ++nAsked;
        return AfxMessageBox("Really?");
    });
    const HWND hAsker = Make(&ask, WS_POPUP);
    Move(hAsker, 250, 0, 100, 100);
    ShowSeen(main, kGreen, 50, 50);
    ShowWindow(hAsker, SW_SHOW);
    std::atomic<int> nBeats{0};
    std::thread user([&] {
        const auto isOpen = [&] { return outside->Find("test.platform.window") != 0; };
        outside->ClickAt(300, 50);
        outside->ClickAt(300, 50);
        EXPECT_TRUE(Soon(isOpen));
        const xcb_window_t box = outside->Find("test.platform.window");
        EXPECT_TRUE(Soon([&] { return outside->Focused() == box; }));
        EXPECT_EQ(outside->Property(box, "WM_TRANSIENT_FOR").size(), 4u);
        const std::uint32_t dialog = outside->Atom("_NET_WM_WINDOW_TYPE_DIALOG");
        EXPECT_EQ(outside->Property(box, "_NET_WM_WINDOW_TYPE"),
                  std::string(reinterpret_cast<const char*>(&dialog), sizeof(dialog)));
        main.heard.clear();
        outside->ClickAt(50, 50);
        outside->ClickAt(300, 50);
        outside->AskToClose(outside->Find("main"));
        outside->Focus(outside->Find("main"));
        EXPECT_TRUE(Soon([&] { return outside->Focused() == box; })) << "it takes the focus back";
        EXPECT_TRUE(IsWindow(main.handle));
        EXPECT_FALSE(IsWindowEnabled(main.handle));
        EXPECT_TRUE(Soon([&, nBefore = nBeats.load()] { return nBeats > nBefore; }));
        outside->TypeSymbol(' ');
        EXPECT_TRUE(Soon([&] { return !isOpen(); }));
        outside->ClickAt(50, 50); // is heard again
    });
    const Handler count = On(WM_TIMER, [&](HWND, WPARAM) { return ++nBeats; });
    const HWND hClock = Make(&count);
    SetTimer(hClock, 1, 10, nullptr);
    EXPECT_TRUE(Pump([&] { return main.Heard("up"); })) << main.heard;
    user.join();
    EXPECT_EQ(nAsked, 1);
    EXPECT_TRUE(IsWindowEnabled(main.handle));
    EXPECT_EQ(main.heard.find("close"), std::string::npos);
    EXPECT_EQ(main.heard.find("down"), main.heard.rfind("down")) << "one click: " << main.heard;
    DestroyWindow(hAsker);
    DestroyWindow(hClock);
}

} // namespace

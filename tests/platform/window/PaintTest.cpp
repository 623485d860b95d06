#include "include/platform/Clock.h"
#include "include/platform/WindowPaint.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Desktop.h"
#include "tests/support/Test.h"

using namespace test;

namespace {

// The messages of painting that a window of 30 by 40 at 1, 2 hears, of which it fills what it may.
struct Painted : Fixed
{
    explicit Painted(char clr, DWORD dwStyle = WS_POPUP | WS_VISIBLE)
        : letter(clr), window(Make(&handler, dwStyle))
    {
    }
    ~Painted() { DestroyWindow(window); }
    std::vector<RECT> TakePainted() { return std::exchange(painted, {}); }

    const char letter;
    int erased = 0;
    std::vector<RECT> painted;
    const Handler handler = [this](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (nMsg == WM_ERASEBKGND) {
            ++erased;
            const RECT all{0, 0, 99, 99};
            const Scoped<HBRUSH> brush(CreateSolidBrush(ColorOf(letter)));
            return FillRect(reinterpret_cast<HDC>(wParam), &all, brush);
        }
        if (nMsg != WM_PAINT) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
        PAINTSTRUCT paint;
        RECT clip;
        EXPECT_NE(BeginPaint(hWnd, &paint), nullptr);
        GetClipBox(paint.hdc, &clip);
        EXPECT_EQ(clip, paint.rcPaint);
        EXPECT_EQ(paint.fErase, 0);
        painted.push_back(paint.rcPaint);
        EXPECT_EQ(EndPaint(hWnd, &paint), 1);
        return 0;
    };
    const HWND window;
};

using Rects = std::vector<RECT>;

TEST(Paint, ComesLastAndCoversWhatWasInvalidated)
{
    Painted painted('R');
    EXPECT_EQ(SeenRow(0, 2, 3), "???"); // shown, and not painted yet
    PostMessage(painted.window, WM_USER, 0, 0);
    MSG msg;
    ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(msg.message, UINT{WM_USER});
    for (int i = 0; i < 2; ++i) { // until it is painted
        ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
        EXPECT_EQ(msg.message, WM_PAINT);
    }
    Pump();
    EXPECT_EQ(painted.TakePainted(), (Rects{{0, 0, 30, 40}}));
    EXPECT_EQ(SeenRow(0, 2, 3), "?RR");

    const RECT part{-5, 1, 4, 3}, other{10, 5, 12, 6};
    InvalidateRect(painted.window, &part, 0);
    EXPECT_EQ(InvalidateRect(painted.window, &other, 0), 1);
    EXPECT_EQ(UpdateWindow(painted.window), 1);
    UpdateWindow(painted.window);
    EXPECT_EQ(painted.TakePainted(), (Rects{{0, 1, 12, 6}}));
    EXPECT_EQ(painted.erased, 1);

    ShowWindow(painted.window, SW_HIDE);
    InvalidateRect(painted.window, nullptr, 1);
    Pump();
    EXPECT_EQ(SeenRow(0, 2, 3), "???");
    ShowWindow(painted.window, SW_SHOWNA);
    EXPECT_EQ(SeenRow(0, 2, 3), "???"); // not what it showed before
    Pump();
    EXPECT_EQ(painted.TakePainted(), (Rects{{0, 0, 30, 40}}));
    EXPECT_EQ(painted.erased, 2);
}

TEST(Paint, ByDefaultErasesWithTheBrushOfTheClass)
{
    const Scoped<HBRUSH> brush(CreateSolidBrush(ColorOf('C')));
    const WNDCLASSA cls{DefWindowProcA, "Brushed", brush};
    RegisterClassA(&cls);
    const HWND hWnd = CreateWindowExA(0, "Brushed", "", WS_POPUP | WS_VISIBLE, 5, 5, 2, 1);
    Pump();
    EXPECT_EQ(SeenRow(4, 5, 4), "?CC?");
    DestroyWindow(hWnd);
    UnregisterClassA("Brushed");
    PAINTSTRUCT paint;
    EXPECT_EQ(BeginPaint(hWnd, &paint), nullptr);
    for (const int done : {EndPaint(hWnd, &paint), EndPaint(hWnd, nullptr), InvalidateRect(hWnd, nullptr, 1),
                           UpdateWindow(hWnd)})
        EXPECT_FALSE(done);
}

TEST(Paint, WindowsLieOnEachOtherInTheirOrder)
{
    Painted red('R'), green('G'), blue('B');
    Pump();
    const auto top = [] { return SeenRow(1, 2, 1); };
    const auto order = [&](const Painted& p, HWND hAfter) {
        SetWindowPos(p.window, hAfter, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
        return top();
    };
    EXPECT_EQ(top(), "B");
    EXPECT_THAT((std::array{order(red, HWND_TOP), order(green, HWND_TOPMOST), order(blue, HWND_TOP),
                            order(red, HWND_TOPMOST), order(red, HWND_NOTOPMOST)}),
                testing::ElementsAre("R", "G", "G", "R", "G"));
    EXPECT_EQ(order(green, HWND_BOTTOM), "R"); // no longer topmost
    ShowWindow(red.window, SW_HIDE);
    EXPECT_EQ(top(), "B");
    ShowWindow(green.window, SW_HIDE);
    ShowWindow(green.window, SW_SHOWNA); // shown on top of its kind
    Pump();
    EXPECT_EQ(top(), "G");
}

TEST(Paint, AMovedWindowKeepsItsPixelsAndPaintsWhatIsNew)
{
    Painted painted('M');
    Pump();
    painted.TakePainted();
    SetWindowPos(painted.window, HWND_TOP, 50, -3, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_EQ(SeenRow(49, 0, 3), "?MM");
    EXPECT_EQ(SeenRow(1, 2, 2), "??");
    EXPECT_EQ(PlaceOf(painted.window), (RECT{50, -3, 80, 37}));
    Pump();
    EXPECT_TRUE(painted.TakePainted().empty());

    Move(painted.window, 50, 0, 32, 41);
    EXPECT_EQ(SeenRow(78, 0, 5), "MM..?"); // what is new isn't painted yet
    Pump();
    EXPECT_EQ(painted.TakePainted(), (Rects{{0, 0, 32, 41}}));
    EXPECT_EQ(SeenRow(78, 0, 5), "MMMM?");
    Move(painted.window, 50, 0, -7, 41);
    InvalidateRect(painted.window, nullptr, 1); // nothing of it
    Pump();
    EXPECT_TRUE(painted.TakePainted().empty());
}

TEST(Paint, AShapedWindowIsSeenWithinItsRegion)
{
    const NoLeak noLeak;
    Painted painted('Y');
    Pump();
    const HRGN region = CreateRectRgn(1, 0, 3, 1);
    EXPECT_EQ(SetWindowRgn(painted.window, region, 0), 1);
    EXPECT_FALSE(DeleteObject(region)); // it was given away
    EXPECT_EQ(SeenRow(0, 2, 6), "??YY??");
    EXPECT_EQ(SeenRow(0, 3, 6), "??????");
    {
        Painted above('G'); // has no region
        Pump();
        EXPECT_EQ(SeenRow(0, 3, 3), "?GG");
    }
    EXPECT_FALSE(SetWindowRgn(painted.window, region, 0));
    EXPECT_FALSE(SetWindowRgn(nullptr, nullptr, 0));
    EXPECT_TRUE(SetWindowRgn(painted.window, nullptr, 1));
    EXPECT_EQ(SeenRow(0, 2, 6), "?YYYYY");
    Pump();
    EXPECT_EQ(painted.TakePainted().size(), 2u);
}

TEST(Paint, TellsOfAChangedPlace)
{
    std::vector<std::pair<UINT, LPARAM>> told;
    const Handler handler = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        if (nMsg == WM_MOVE || nMsg == WM_SIZE) told.emplace_back(nMsg, lParam);
        return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    };
    const HWND hWnd = Make(&handler);
    EXPECT_EQ(Move(hWnd, 1, 2, 30, 40), 1);
    Move(hWnd, -1, 2, 30, 40);
    Move(hWnd, -1, 3, 30, 40);
    Move(hWnd, -1, 3, 31, 41);
    using P = std::pair<UINT, LPARAM>;
    EXPECT_THAT(told, testing::ElementsAre(P(WM_MOVE, 0x2FFFF), P(WM_MOVE, 0x3FFFF), P(WM_SIZE, 0x29001F)));
    InThread([&] { EXPECT_FALSE(Move(hWnd, 0, 0, 1, 1)); });
    RECT rect;
    EXPECT_EQ(GetWindowRect(hWnd, &rect), 1);
    EXPECT_EQ(rect, (RECT{-1, 3, 30, 44}));
    EXPECT_EQ(GetClientRect(hWnd, &rect), 1);
    EXPECT_EQ(rect, (RECT{0, 0, 31, 41}));
    DestroyWindow(hWnd);
}

// An opacity of 128 shows half of the window and half of what lies below.
TEST(Paint, AFadingWindowLetsThroughWhatLiesBelow)
{
    const VirtualClock clock(0);
    std::optional<DWORD> finished;
    std::binary_semaphore ready{0};
    HWND hWnd = nullptr;
    std::thread thread([&] {
        Painted painted('W', WS_POPUP);
        hWnd = painted.window;
        ready.release();
        const DWORD begin = GetTickCount();
        EXPECT_TRUE(AnimateWindow(painted.window, 3000, AW_BLEND));
        finished = GetTickCount() - begin;
        EXPECT_TRUE(AnimateWindow(painted.window, 300, AW_BLEND | AW_HIDE));
        EXPECT_FALSE(IsWindowVisible(painted.window));
        EXPECT_FALSE(AnimateWindow(painted.window, 300, AW_BLEND | AW_HIDE)); // hidden already
        EXPECT_FALSE(AnimateWindow(nullptr, 300, AW_BLEND));
    });
    ready.acquire();
    const auto red = [] { return int{GetRValue(SeenAt(1, 2))}; }; // of white over a desktop with none
    const auto advance = [](DWORD dwMilliseconds) {
        AwaitSleepers(1);
        KXHost::AdvanceClock(dwMilliseconds);
        AwaitSleepers(1);
    };
    for (const auto& [milliseconds, expected] : {std::pair{0u, 0}, {16u, 1}, {984u, 85}, {1000u, 170}}) {
        advance(milliseconds);
        EXPECT_EQ(red(), expected);
    }
    EXPECT_EQ(SendMessageA(hWnd, kPing, 0, 0), 1); // served meanwhile
    advance(1000);
    EXPECT_EQ(red(), 255);
    advance(150);
    EXPECT_NEAR(red(), 127, 1);
    KXHost::AdvanceClock(150);
    thread.join();
    EXPECT_EQ(finished, DWORD{3000});
    EXPECT_EQ(red(), 0);
}

TEST(Paint, AnAnimationEndsWithItsWindow)
{
    const VirtualClock clock(0, KXHost::VirtualSleep::Advances);
    HWND hWnd = nullptr;
    const Handler handler = On(WM_PAINT, [&](HWND h, WPARAM) {
        EXPECT_EQ(DefWindowProcA(h, WM_PAINT, 0, 0), 0);
        EXPECT_EQ(SeenRow(1, 2, 1), "?"); // nothing of it at first
        return LRESULT{DestroyWindow(h)};
    });
    hWnd = Make(&handler, WS_POPUP);
    EXPECT_FALSE(AnimateWindow(hWnd, 3000, AW_BLEND));
    EXPECT_FALSE(IsWindow(hWnd));

    Painted painted('R', WS_POPUP); // without blending all is done at once
    const DWORD begin = GetTickCount();
    EXPECT_EQ(AnimateWindow(painted.window, 3000, AW_ACTIVATE), 1);
    EXPECT_EQ(GetTickCount(), begin);
    EXPECT_EQ(GetFocus(), painted.window);
    EXPECT_EQ(SeenRow(1, 2, 1), "R");
}

// On a clock that the fade itself moves.
TEST(Paint, AFadeThatSkipsTheWaitServesWhatIsSent)
{
    const VirtualClock clock(0, KXHost::VirtualSleep::Advances);
    DWORD heardAt = 0;
    const Handler handler = On(kAsk, [&](HWND, WPARAM) {
        heardAt = GetTickCount();
        return 5;
    });
    const HWND hWnd = Make(&handler, WS_POPUP);
    Sender sender(hWnd, kAsk);
    InThread([&] { sender.AwaitWaiting(); }); // this thread would serve it in the wait
    const DWORD begin = GetTickCount();
    EXPECT_TRUE(AnimateWindow(hWnd, 3000, AW_BLEND));
    EXPECT_EQ(GetTickCount() - begin, 3000u);
    EXPECT_EQ(sender.Join(), 5);
    EXPECT_LT(heardAt - begin, 100u);
    DestroyWindow(hWnd);
}

TEST(Paint, TheDesktopIsOfTheSizeThatTheHostChose)
{
    EXPECT_TRUE(KXHost::IsMemoryDesktop());
    {
        Painted painted('R');
        EXPECT_FALSE(KXHost::UseMemoryDesktop(3, 2)); // it has windows
    }
    for (const auto& [nWidth, nHeight] : {std::pair{0, 2}, {2, 0}, {16'385, 2}, {2, 16'385}})
        EXPECT_FALSE(KXHost::UseMemoryDesktop(nWidth, nHeight));
    const HDC old = GetDC(nullptr);
    ASSERT_TRUE(KXHost::UseMemoryDesktop(3, 2));
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 3);
    EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), 2);
    RECT rect;
    EXPECT_EQ(GetWindowRect(GetDesktopWindow(), &rect), 1);
    EXPECT_EQ(rect, (RECT{0, 0, 3, 2}));
    EXPECT_EQ(SetPixel(old, 9, 9, 0), 0u); // harmless
    ReleaseDC(nullptr, old);
    EXPECT_EQ(SeenAt(3, 0), CLR_INVALID);
    EXPECT_EQ(SeenAt(2, 1), DESKTOP_COLOR);
    for (const auto& [nWidth, nHeight] : {std::pair{16'384, 1}, {1, 16'384}})
        EXPECT_TRUE(KXHost::UseMemoryDesktop(nWidth, nHeight));
    EXPECT_TRUE(KXHost::UseMemoryDesktop());
}

} // namespace

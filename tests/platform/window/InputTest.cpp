// Input on the desktop in memory: the host posts it in the person's place.

#include "include/platform/Input.h"
#include "tests/platform/window/Support.h"
#include "tests/support/Desktop.h"
#include "tests/support/Test.h"

using namespace test;

namespace {

constexpr LPARAM At(int x, int y)
{
    return static_cast<LPARAM>(static_cast<WORD>(x) | static_cast<DWORD>(static_cast<WORD>(y)) << 16);
}

// A window that writes down which of the mouse's and the keys' messages it hears.
struct Listener : Fixed
{
    explicit Listener(const WNDCLASSA& cls = {WindowProc, "KXTest"}) : handle(Make(&handler, 0, nullptr, cls))
    {
    }
    ~Listener() { DestroyWindow(handle); }

    std::string Take()
    {
        Pump();
        return std::exchange(heard, {});
    }
    void Click(int x, int y)
    {
        KXHost::PostInput(handle, WM_LBUTTONDOWN, MK_LBUTTON, At(x, y));
        KXHost::PostInput(handle, WM_LBUTTONUP, 0, At(x, y));
    }

    std::string heard;
    int cursors = 0;
    int lastY = 0;
    const Handler handler = [this](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        if (nMsg >= WM_KEYDOWN && nMsg <= WM_CAPTURECHANGED && nMsg != WM_TIMER) {
            heard += std::to_string(nMsg) + " " + std::to_string(GET_X_LPARAM(lParam)) + ";";
            lastY = GET_Y_LPARAM(lParam);
        }
        if (nMsg == WM_ENABLE || nMsg == WM_MOUSELEAVE || nMsg == WM_CLOSE)
            heard += std::to_string(nMsg) + ";";
        if (nMsg == WM_ENABLE) {
            EXPECT_EQ(wParam, IsWindowEnabled(hWnd) ? 1u : 0u);
        }
        if (nMsg == WM_SETCURSOR) {
            ++cursors;
            EXPECT_EQ(reinterpret_cast<HWND>(wParam), hWnd);
            EXPECT_EQ(GET_X_LPARAM(lParam), HTCLIENT);
        }
        return nMsg == WM_CLOSE ? 0 : DefWindowProcA(hWnd, nMsg, wParam, lParam);
    };
    const HWND handle;
};

TEST(Input, ADisabledWindowHearsNothingOfIt)
{
    Listener window;
    SetFocus(window.handle);
    SetCapture(window.handle);
    EXPECT_FALSE(EnableWindow(window.handle, 0));
    EXPECT_EQ(window.Take(), "533 0;10;");
    EXPECT_FALSE(IsWindowEnabled(window.handle));
    EXPECT_FALSE(GetFocus());
    EXPECT_FALSE(SetFocus(window.handle));
    const Listener other;
    SetFocus(other.handle);
    window.Click(3, 4);
    KXHost::PostInput(window.handle, WM_KEYDOWN, 'A', 1);
    KXHost::PostInput(window.handle, WM_CHAR, 'a', 1);
    EXPECT_EQ(KXHost::PostInput(window.handle, WM_CLOSE, 0, 0), 1);
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(GetFocus(), other.handle);
    PostMessage(window.handle, WM_CLOSE, 0, 0); // a program's own word is heard
    EXPECT_EQ(window.Take(), "16;");
    window.Click(3, 4); // before it is enabled, but taken after
    EXPECT_TRUE(EnableWindow(window.handle, 1));
    EXPECT_FALSE(EnableWindow(window.handle, 1));
    EXPECT_EQ(window.Take(), "10;513 3;514 3;");
    EXPECT_FALSE(EnableWindow(nullptr, 1));
    EXPECT_FALSE(IsWindowEnabled(nullptr));
}

TEST(Input, ASecondPressIsADoubleClick)
{
    const VirtualClock clock;
    Listener doubles({WindowProc, "KXDoubles", nullptr, CS_DBLCLKS}), singles;
    const auto twice = [&](Listener& window, unsigned pause, int dx, int dy = 0) {
        KXHost::AdvanceClock(5'000);
        window.Click(5, 5);
        KXHost::AdvanceClock(pause);
        window.Click(5 + dx, 5 + dy);
        return window.Take();
    };
    EXPECT_EQ(twice(doubles, 500, 2), "513 5;514 5;515 7;514 7;");
    EXPECT_EQ(twice(doubles, 501, 0), "513 5;514 5;513 5;514 5;");
    EXPECT_EQ(twice(doubles, 10, 3), "513 5;514 5;513 8;514 8;");
    EXPECT_EQ(twice(doubles, 10, 0, -3), "513 5;514 5;513 5;514 5;");
    EXPECT_EQ(twice(singles, 10, 0), "513 5;514 5;513 5;514 5;");
    KXHost::AdvanceClock(5'000);
    for (int n = 0; n < 3; ++n)
        doubles.Click(5, 5);
    EXPECT_EQ(doubles.Take(), "513 5;514 5;515 5;514 5;513 5;514 5;") << "a third is a first one";
}

TEST(Input, ACapturedMouseGoesToOneWindow)
{
    Listener first, second;
    SetWindowPos(second.handle, nullptr, 101, 52, 0, 0, SWP_NOSIZE | SWP_NOACTIVATE);
    EXPECT_EQ(SetCapture(first.handle), nullptr);
    EXPECT_EQ(GetCapture(), first.handle);
    KXHost::PostInput(second.handle, WM_MOUSEMOVE, 0, At(7, 4));
    second.Take();
    EXPECT_EQ(first.Take(), "512 107;");
    EXPECT_EQ(first.lastY, 54);
    KXHost::PostInput(second.handle, WM_MOUSEWHEEL, 0, At(7, 4)); // tells a place on the desktop
    second.Take();
    EXPECT_EQ(first.Take(), "522 7;");
    EXPECT_EQ(first.cursors, 0);
    EXPECT_EQ(SetCapture(first.handle), first.handle);
    EXPECT_EQ(first.Take(), "");
    EXPECT_EQ(SetCapture(second.handle), first.handle);
    EXPECT_EQ(first.Take(),
              "533 " + std::to_string(GET_X_LPARAM(reinterpret_cast<LPARAM>(second.handle))) + ";");
    ShowWindow(second.handle, SW_SHOWNA);
    ShowWindow(second.handle, SW_HIDE);
    EXPECT_EQ(second.Take().substr(0, 3), "533");
    EXPECT_EQ(GetCapture(), nullptr);
    SetCapture(first.handle);
    DestroyWindow(first.handle);
    EXPECT_FALSE(KXHost::PostInput(first.handle, WM_MOUSEMOVE, 0, 0));
    EXPECT_EQ(GetCapture(), nullptr);
    SetCapture(second.handle);
    Listener();
    EXPECT_EQ(GetCapture(), second.handle) << "another window's end";
    EXPECT_EQ(ReleaseCapture(), 1);
    EXPECT_EQ(second.Take(), "533 0;");
    EXPECT_FALSE(SetCapture(nullptr));
    EXPECT_FALSE(GetCapture());
}

TEST(Input, LeavingIsToldOnceToWhoAsked)
{
    Listener window;
    const auto leave = [&] {
        KXHost::PostInput(window.handle, WM_MOUSELEAVE, 0, 0);
        return window.Take();
    };
    EXPECT_EQ(leave(), "");
    TRACKMOUSEEVENT track{.dwFlags = TME_LEAVE, .hwndTrack = window.handle};
    EXPECT_EQ(TrackMouseEvent(&track), 1);
    EXPECT_EQ(leave(), "675;");
    EXPECT_EQ(leave(), "");
    TrackMouseEvent(&track);
    track.dwFlags |= TME_CANCEL;
    EXPECT_TRUE(TrackMouseEvent(&track));
    EXPECT_EQ(leave(), "");
    track.dwFlags = 0;
    EXPECT_FALSE(TrackMouseEvent(&track));
    EXPECT_FALSE(TrackMouseEvent(nullptr));
}

TEST(Input, KeysAndCursorsAreKnown)
{
    Listener window({WindowProc, "KXHand", nullptr, 0, LoadCursorA(nullptr, IDC_HAND)});
    const auto key = [&](UINT nMsg, UINT nKey) {
        KXHost::PostInput(window.handle, nMsg, nKey, 1);
        window.Take();
    };
    EXPECT_EQ(GetKeyState(VK_SHIFT), 0);
    key(WM_KEYDOWN, VK_SHIFT);
    key(WM_CHAR, VK_SHIFT); // a letter of that number
    EXPECT_LT(GetKeyState(VK_SHIFT), 0);
    key(WM_KEYDOWN, VK_SHIFT); // it repeats
    key(WM_KEYUP, VK_SHIFT);
    EXPECT_THAT((std::array{GetKeyState(VK_SHIFT), GetKeyState(-1), GetKeyState(256)}),
                testing::ElementsAre(1, 0, 0));

    EXPECT_FALSE(LoadCursorA(nullptr, "name"));
    for (const std::uintptr_t number : {32511u, 32517u, 32641u, 32647u, 32651u})
        EXPECT_FALSE(LoadCursorA(nullptr, reinterpret_cast<const char*>(number))) << number;
    for (const std::uintptr_t number : {32512u, 32516u, 32642u, 32646u, 32648u, 32650u})
        EXPECT_TRUE(LoadCursorA(nullptr, reinterpret_cast<const char*>(number))) << number;
    SetCursor(LoadCursorA(nullptr, IDC_ARROW));
    KXHost::PostInput(window.handle, WM_MOUSEMOVE, 0, At(1, 1));
    window.Take();
    EXPECT_EQ(window.cursors, 1);
    EXPECT_EQ(SetCursor(nullptr), LoadCursorA(nullptr, IDC_HAND)) << "the class's";
}

} // namespace

#pragma once

#include "include/platform/Input.h"
#include "include/platform/WindowPaint.h"
#include "tests/platform/window/Support.h"
#include "tests/platform/window/XClient.h"
#include "tests/support/Desktop.h"
#include "tests/support/Test.h"
#include "tests/support/XServer.h"

namespace test {

inline constexpr COLORREF kRed = RGB(255, 0, 0);
inline constexpr COLORREF kGreen = RGB(0, 255, 0);
inline constexpr COLORREF kBlue = RGB(0, 0, 255);

// Looks again and again until it is so, or a time has passed in which everything would have come.
template <class Ready>
bool Soon(Ready ready)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!ready()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

// The same while this thread's messages are dispatched.
template <class Ready>
bool Pump(Ready ready)
{
    return Soon([&] {
        Pump();
        return ready();
    });
}

// A window that fills itself with a colour and writes down what it hears of what a test asks for.
class ColorWindow : Fixed
{
public:
    ColorWindow(COLORREF color, RECT rect, DWORD style = WS_POPUP, const char* title = "colour")
        : m_color(color), m_handler([this](HWND h, UINT m, WPARAM w, LPARAM l) { return Hear(h, m, w, l); })
    {
        handle = Make(&m_handler, style, title);
        SetWindowPos(handle, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                     SWP_NOACTIVATE);
    }
    ~ColorWindow() { DestroyWindow(handle); }

    bool Heard(const std::string& words) const { return heard.find(words) != std::string::npos; }

    HWND handle = nullptr;
    int paints = 0;
    std::string heard; // as "name wParam x,y;"

private:
    LRESULT Hear(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
    {
        static constexpr std::pair<UINT, const char*> kNames[] = {
            {WM_LBUTTONDOWN, "down"},  {WM_LBUTTONUP, "up"},        {WM_RBUTTONDOWN, "rdown"},
            {WM_RBUTTONUP, "rup"},     {WM_MBUTTONDOWN, "mdown"},   {WM_MBUTTONUP, "mup"},
            {WM_MOUSEWHEEL, "wheel"},  {WM_KEYDOWN, "key"},         {WM_KEYUP, "keyup"},
            {WM_CHAR, "char"},         {WM_SIZE, "size"},           {WM_SETFOCUS, "focus"},
            {WM_KILLFOCUS, "unfocus"}, {WM_CLOSE, "close"},         {WM_DESTROY, "destroy"},
            {WM_MOUSEMOVE, "move"},    {WM_MOUSELEAVE, "leave"},    {WM_LBUTTONDBLCLK, "twice"},
            {WM_SYSKEYDOWN, "syskey"}, {WM_SYSKEYUP, "syskeyup"},   {WM_SYSCHAR, "syschar"},
            {WM_MOVE, "place"},        {WM_CAPTURECHANGED, "lost"}, {WM_DISPLAYCHANGE, "display"}};
        // Whether it is a key that was down already; one that goes up was, and tells both, and whether Alt is
        // held.
        const bool bKey = nMsg >= WM_KEYDOWN && nMsg <= WM_SYSCHAR;
        const LPARAM nAlt = nMsg >= WM_SYSKEYDOWN ? 1 : 0;
        const LPARAM nExpected = nMsg == WM_KEYUP || nMsg == WM_SYSKEYUP ? 6 + nAlt : nAlt;
        const bool bAgain = bKey && (lParam >> 29 & 7) != nExpected;
        if (bKey) lParam &= 0xFFFF;
        for (const auto& [number, name] : kNames)
            if (number == nMsg)
                heard += (bAgain ? "again " : "") + std::string(name) + " " +
                         std::to_string(nMsg == WM_SETFOCUS ? 0 : wParam) + " " +
                         std::to_string(GET_X_LPARAM(lParam)) + "," + std::to_string(GET_Y_LPARAM(lParam)) +
                         ";";
        if (nMsg != WM_PAINT) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
        ++paints;
        PAINTSTRUCT paint;
        BeginPaint(hWnd, &paint);
        const RECT all{0, 0, 2000, 2000};
        FillRect(paint.hdc, &all, Scoped<HBRUSH>(CreateSolidBrush(m_color)));
        EndPaint(hWnd, &paint);
        return 0;
    }

    const COLORREF m_color;
    const Handler m_handler;
};

// A test on a screen of its own.
struct X11Test : testing::Test
{
    void SetUp() override { Begin(); }
    void TearDown() override { EXPECT_TRUE(KXHost::UseMemoryDesktop()); }
    void Begin(const std::string& screen = "640x480x24", std::vector<std::string> options = {})
    {
        server.reset();
        server.emplace(screen, options);
        ASSERT_TRUE(KXHost::UseDisplay(server->Name().c_str()));
        outside.emplace(server->Name());
    }
    // Whether the screen shows a colour there, now or soon, while this thread's messages are dispatched.
    bool Shows(int x, int y, COLORREF color)
    {
        return Pump([&] { return outside->Pixel(x, y) == color; });
    }
    // The same of a window's place.
    static bool Lies(HWND hWnd, const RECT& rect)
    {
        return Pump([&] { return PlaceOf(hWnd) == rect; });
    }
    // Shows a window and waits until it is seen.
    void ShowSeen(const ColorWindow& window, COLORREF color, int x, int y)
    {
        ShowWindow(window.handle, SW_SHOW);
        ASSERT_TRUE(Shows(x, y, color));
    }

    std::optional<XServer> server;
    std::optional<XClient> outside;
};

struct SeenWindow : ColorWindow
{
    SeenWindow(X11Test& test, COLORREF color, RECT rect, DWORD style = WS_POPUP, const char* title = "colour")
        : ColorWindow(color, rect, style, title)
    {
        test.ShowSeen(*this, color, rect.right - 1, rect.bottom - 1);
    }
};

} // namespace test

#include "tests/platform/window/Support.h"
#include "tests/support/Test.h"

using namespace test;
using testing::ElementsAre;

namespace {

constexpr UINT NCCREATE = WM_NCCREATE, CREATE = WM_CREATE, SHOW = WM_SHOWWINDOW, DESTROY = WM_DESTROY,
               NCDESTROY = WM_NCDESTROY;

std::string TextOf(HWND hWnd, int nSize = 32)
{
    char buffer[32] = "unset";
    const int n = GetWindowTextA(hWnd, buffer, nSize);
    EXPECT_EQ(std::string(buffer).size(), static_cast<std::size_t>(n));
    return buffer;
}

TEST(Window, LivesThroughItsMessages)
{
    std::vector<std::pair<UINT, bool>> seen; // and whether it was visible
    std::vector<WPARAM> shows;
    const Handler handler = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        seen.emplace_back(nMsg, IsWindowVisible(hWnd) != 0);
        EXPECT_EQ(GetWindowThreadProcessId(hWnd, nullptr), GetCurrentThreadId());
        if (nMsg == NCCREATE || nMsg == CREATE) {
            const auto& create = *reinterpret_cast<const CREATESTRUCTA*>(lParam);
            EXPECT_EQ(create.lpCreateParams, &handler);
            EXPECT_EQ(create.style, (WS_POPUP | WS_VISIBLE));
            EXPECT_STREQ(create.lpszName, "name");
            EXPECT_STREQ(create.lpszClass, "KXTest");
            EXPECT_THAT((std::vector{create.x, create.y, create.cx, create.cy}), ElementsAre(1, 2, 30, 40));
        } else
            EXPECT_EQ(lParam, 0) << nMsg;
        if (nMsg == SHOW)
            shows.push_back(wParam);
        else
            EXPECT_EQ(wParam, 0u) << nMsg;
        if (nMsg == DESTROY || nMsg == NCDESTROY) {
            EXPECT_FALSE(DestroyWindow(hWnd)); // not twice
        }
        return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    };
    const HWND hWnd = Make(&handler, WS_POPUP | WS_VISIBLE, "name");
    EXPECT_TRUE(IsWindowVisible(hWnd));
    EXPECT_TRUE(ShowWindow(hWnd, 1));
    EXPECT_TRUE(ShowWindow(hWnd, SW_HIDE));
    EXPECT_FALSE(ShowWindow(hWnd, SW_HIDE));
    EXPECT_FALSE(ShowWindow(hWnd, SW_SHOW));
    EXPECT_THAT(shows, ElementsAre(1u, 0u, 1u));

    DWORD dwProcessId = 0;
    EXPECT_EQ(GetWindowThreadProcessId(hWnd, &dwProcessId), GetCurrentThreadId());
    EXPECT_EQ(dwProcessId, GetCurrentProcessId());
    InThread([&] {
        EXPECT_FALSE(DestroyWindow(hWnd));
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    });
    EXPECT_EQ(SendMessageA(hWnd, WM_CLOSE, 0, 0), 0);
    EXPECT_FALSE(IsWindow(hWnd));
    using P = std::pair<UINT, bool>;
    EXPECT_THAT(seen, ElementsAre(P(NCCREATE, false), P(CREATE, false), P(SHOW, false), P(WM_SETFOCUS, true),
                                  P(SHOW, true), P(WM_KILLFOCUS, false), P(SHOW, false), P(WM_SETFOCUS, true),
                                  P(WM_CLOSE, true), P(WM_KILLFOCUS, false), P(DESTROY, false),
                                  P(NCDESTROY, false)));
}

// The procedure's act at one message while the window is made, and which messages there are then.
TEST(Window, IsNotMadeWhenItsProcedureRefusesOrEndsIt)
{
    const auto destroy = [](HWND hWnd) { return LRESULT{DestroyWindow(hWnd)}; };
    const auto fail = [](HWND) -> LRESULT { throw std::runtime_error("no"); };
    const std::tuple<UINT, std::function<LRESULT(HWND)>, std::vector<UINT>> cases[] = {
        {NCCREATE, [](HWND) { return 0; }, {NCCREATE, NCDESTROY}},
        {CREATE, [](HWND) { return -1; }, {NCCREATE, CREATE, DESTROY, NCDESTROY}},
        {NCCREATE, destroy, {NCCREATE, DESTROY, NCDESTROY}},
        {CREATE, destroy, {NCCREATE, CREATE, DESTROY, NCDESTROY}},
        {SHOW, destroy, {NCCREATE, CREATE, SHOW, DESTROY, NCDESTROY}},
        {CREATE, fail, {NCCREATE, CREATE}},
    };
    for (const auto& [at, act, expected] : cases) {
        std::vector<UINT> seen;
        HWND made = nullptr;
        const Handler handler = [&, n = at, &own = act](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
            made = hWnd;
            seen.push_back(nMsg);
            if (nMsg == NCDESTROY) {
                EXPECT_FALSE(DestroyWindow(hWnd));
            }
            return nMsg == n ? own(hWnd) : DefWindowProcA(hWnd, nMsg, wParam, lParam);
        };
        try {
            EXPECT_EQ(Make(&handler, WS_VISIBLE), nullptr);
        } catch (const std::runtime_error&) {
        }
        EXPECT_EQ(seen, expected);
        EXPECT_FALSE(IsWindow(made));
    }
    const Handler failAtEnd = On(DESTROY, [&](HWND h, WPARAM) { return fail(h); });
    const HWND hWnd = Make(&failAtEnd);
    EXPECT_THROW(DestroyWindow(hWnd), std::runtime_error);
    EXPECT_FALSE(IsWindow(hWnd));
}

TEST(Window, HandlesThatNameNoWindowAreHarmless)
{
    std::set<HWND> used;
    const int nLive = KXHost::LiveHandles();
    for (int i = 0; i < 1'000; ++i) {
        const HWND hWnd = Make();
        EXPECT_EQ(KXHost::LiveHandles(), nLive + 1);
        EXPECT_TRUE(used.insert(hWnd).second); // never again
        EXPECT_EQ(DestroyWindow(hWnd), 1);
    }
    EXPECT_EQ(KXHost::LiveHandles(), nLive);
    for (const std::uintptr_t number : {std::uintptr_t{0}, std::uintptr_t{1},
                                        reinterpret_cast<std::uintptr_t>(*used.begin()), UINTPTR_MAX}) {
        const HWND hWnd = reinterpret_cast<HWND>(number);
        DWORD dwProcessId = 1;
        char buffer[8] = "unset";
        MSG msg{hWnd, WM_USER, 0, 0, 0};
        for (const int done :
             {IsWindow(hWnd), IsWindowVisible(hWnd), ShowWindow(hWnd, SW_SHOW), DestroyWindow(hWnd),
              SetWindowTextA(hWnd, "text"), GetWindowTextA(hWnd, buffer, 8)})
            EXPECT_FALSE(done);
        EXPECT_FALSE(SetWindowLongPtrA(hWnd, GWLP_USERDATA, 7));
        EXPECT_FALSE(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
        EXPECT_FALSE(*buffer);
        EXPECT_FALSE(GetWindowThreadProcessId(hWnd, &dwProcessId));
        EXPECT_FALSE(dwProcessId);
        EXPECT_FALSE(SendMessageA(hWnd, WM_USER, 1, 2));
        EXPECT_FALSE(DispatchMessageA(&msg));
        EXPECT_FALSE(DefWindowProcA(hWnd, WM_CLOSE, 0, 0));
        if (!hWnd) continue; // means the calling thread below
        EXPECT_FALSE(PostMessage(hWnd, WM_USER, 1, 2));
        EXPECT_FALSE(PeekMessageA(&msg, hWnd, 0, 0, PM_REMOVE));
        EXPECT_EQ(GetMessageA(&msg, hWnd, 0, 0), -1);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    }
}

TEST(Window, KeepsTextAndUserValue)
{
    const HWND hWnd = Make(nullptr, 0, "name");
    EXPECT_EQ(TextOf(hWnd), "name");
    EXPECT_EQ(SetWindowTextA(hWnd, "ab\xD6\xD0"), 1);
    EXPECT_EQ(TextOf(hWnd), "ab\xD6\xD0");
    EXPECT_EQ(TextOf(hWnd, 4), "ab"); // never half a letter
    EXPECT_EQ(TextOf(hWnd, 1), "");
    char untouched[] = "x";
    EXPECT_FALSE(GetWindowTextA(hWnd, nullptr, 4));
    EXPECT_FALSE(GetWindowTextA(hWnd, untouched, 0));
    EXPECT_FALSE(GetWindowTextA(hWnd, untouched, -1));
    EXPECT_STREQ(untouched, "x");
    EXPECT_TRUE(SetWindowTextA(hWnd, nullptr));
    EXPECT_EQ(TextOf(hWnd), "");

    SetWindowLongPtrA(hWnd, GWLP_USERDATA, INTPTR_MIN);
    EXPECT_EQ(GetWindowLongPtrA(hWnd, GWLP_USERDATA), INTPTR_MIN);
    EXPECT_FALSE(SetWindowLongPtrA(hWnd, -4, 1));
    EXPECT_FALSE(GetWindowLongPtrA(hWnd, -4));
    EXPECT_EQ(SetWindowLongPtrA(hWnd, GWLP_USERDATA, 0), INTPTR_MIN);
    EXPECT_TRUE(DestroyWindow(hWnd));
}

// Another thread shows and hides it; what concerns the focus comes to the owner among its messages.
TEST(Window, GetsAndLosesTheFocusByAnotherThreadsCall)
{
    std::vector<UINT> heard;
    std::vector<bool> has; // at each question
    std::binary_semaphore answered{0};
    WindowThread thread([&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        if (nMsg == WM_SETFOCUS || nMsg == WM_KILLFOCUS) heard.push_back(nMsg);
        if (nMsg == kAsk) {
            has.push_back(GetFocus() == hWnd);
            answered.release();
        }
        return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    });
    const auto ask = [&] {
        PostMessage(thread.Window(), kAsk, 0, 0);
        answered.acquire();
    };
    ShowWindow(thread.Window(), SW_SHOWNA);
    ask();
    ShowWindow(thread.Window(), SW_HIDE);
    ShowWindow(thread.Window(), SW_SHOW);
    ask();
    ShowWindow(thread.Window(), SW_HIDE);
    ask();
    EXPECT_THAT(has, ElementsAre(false, true, false));
    EXPECT_THAT(heard, ElementsAre(WM_SETFOCUS, WM_KILLFOCUS));
    thread.Join();
}

TEST(WindowClass, NamesAreTakenOnceIgnoringCase)
{
    const auto add = [](const char* pszName, WNDPROC proc = DefWindowProcA) {
        const WNDCLASSA cls{proc, pszName};
        return RegisterClassA(&cls);
    };
    const auto make = [](const char* psz) { return CreateWindowExA(0, psz, nullptr, 0, 0, 0, 0, 0); };
    const WORD atom = add("Kx\xB0\x41"); // one letter whose second byte is an "A"
    const auto* pszAtom = reinterpret_cast<const char*>(std::uintptr_t{atom});
    EXPECT_FALSE(add("kX\xB0\x41"));
    EXPECT_EQ(GetLastError(), ERROR_CLASS_ALREADY_EXISTS);
    EXPECT_FALSE(make("Kx\xB0\x61")); // another letter
    EXPECT_EQ(GetLastError(), ERROR_CLASS_DOES_NOT_EXIST);

    const HWND hWnd = make("KX\xB0\x41"), hByAtom = make(pszAtom);
    EXPECT_TRUE(DestroyWindow(hByAtom));
    EXPECT_FALSE(UnregisterClassA("kx\xB0\x41"));
    EXPECT_EQ(GetLastError(), ERROR_CLASS_HAS_WINDOWS);
    EXPECT_TRUE(DestroyWindow(hWnd));
    EXPECT_EQ(UnregisterClassA("kx\xB0\x41"), 1);
    EXPECT_FALSE(UnregisterClassA("kx\xB0\x41"));
    EXPECT_FALSE(make(pszAtom));
    for (const WORD none : {add("KXOther", nullptr), add(""), add(nullptr), RegisterClassA(nullptr)})
        EXPECT_FALSE(none);
    EXPECT_FALSE(make(nullptr));
    EXPECT_FALSE(make(reinterpret_cast<const char*>(std::uintptr_t{0xFFFF})));
    EXPECT_FALSE(UnregisterClassA(nullptr));
}

} // namespace

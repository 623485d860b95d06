#include "tests/platform/window/Support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

using test::Handler;
using test::Make;
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

HWND Numbered(std::uintptr_t n)
{
    return reinterpret_cast<HWND>(n);
}

TEST(Window, IsMadeWithItsMessages)
{
    std::vector<UINT> seen;
    const Handler handler = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        seen.push_back(nMsg);
        EXPECT_EQ(GetWindowThreadProcessId(hWnd, nullptr), GetCurrentThreadId());
        if (nMsg == NCCREATE || nMsg == CREATE) {
            const auto& create = *reinterpret_cast<const CREATESTRUCTA*>(lParam);
            EXPECT_EQ(create.lpCreateParams, &handler);
            EXPECT_STREQ(create.lpszName, "name");
            EXPECT_STREQ(create.lpszClass, "KXTest");
            EXPECT_THAT((std::vector{create.x, create.y, create.cx, create.cy}), ElementsAre(1, 2, 30, 40));
            EXPECT_EQ(create.style, WS_POPUP | WS_VISIBLE);
        }
        EXPECT_TRUE(nMsg != SHOW || wParam == 1);
        return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    };
    const HWND hWnd = Make(&handler, WS_POPUP | WS_VISIBLE, "name");
    EXPECT_THAT(seen, ElementsAre(NCCREATE, CREATE, SHOW));
    EXPECT_TRUE(IsWindowVisible(hWnd));
    EXPECT_EQ(TextOf(hWnd), "name");
    EXPECT_EQ(GetWindowProcA(hWnd), test::WindowProc);
    DWORD dwProcessId = 0;
    EXPECT_EQ(GetWindowThreadProcessId(hWnd, &dwProcessId), GetCurrentThreadId());
    EXPECT_EQ(dwProcessId, GetCurrentProcessId());
    EXPECT_EQ(SendMessageA(hWnd, WM_CLOSE, 0, 0), 0);
    EXPECT_FALSE(IsWindow(hWnd));
    EXPECT_THAT(seen, ElementsAre(NCCREATE, CREATE, SHOW, WM_CLOSE, DESTROY, NCDESTROY));
}

// What the procedure does at one message, and which messages there are then.
TEST(Window, IsNotMadeWhenItsProcedureRefusesOrEndsIt)
{
    const auto destroy = [](HWND hWnd) { return LRESULT{DestroyWindow(hWnd)}; };
    struct Case
    {
        UINT at;
        std::function<LRESULT(HWND)> act;
        std::vector<UINT> expected;
    };
    const Case cases[] = {
        {NCCREATE, [](HWND) { return 0; }, {NCCREATE, NCDESTROY}},
        {CREATE, [](HWND) { return -1; }, {NCCREATE, CREATE, DESTROY, NCDESTROY}},
        {NCCREATE, destroy, {NCCREATE, DESTROY, NCDESTROY}},
        {CREATE, destroy, {NCCREATE, CREATE, DESTROY, NCDESTROY}},
        {SHOW, destroy, {NCCREATE, CREATE, SHOW, DESTROY, NCDESTROY}},
        {CREATE, [](HWND) -> LRESULT { throw std::runtime_error("no"); }, {NCCREATE, CREATE}},
    };
    for (const Case& c : cases) {
        std::vector<UINT> seen;
        HWND made = nullptr;
        const Handler handler = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
            made = hWnd;
            seen.push_back(nMsg);
            return nMsg == c.at ? c.act(hWnd) : DefWindowProcA(hWnd, nMsg, wParam, lParam);
        };
        try {
            EXPECT_EQ(Make(&handler, WS_VISIBLE), nullptr);
        } catch (const std::runtime_error&) {
        }
        EXPECT_EQ(seen, c.expected);
        EXPECT_FALSE(IsWindow(made));
    }
}

TEST(Window, IsShownAndHidden)
{
    std::vector<WPARAM> shows;
    const Handler handler = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        if (nMsg == SHOW) {
            shows.push_back(wParam);
            EXPECT_NE(IsWindowVisible(hWnd), static_cast<int>(wParam)); // not yet
        }
        return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    };
    const HWND hWnd = Make(&handler);
    EXPECT_FALSE(IsWindowVisible(hWnd));
    EXPECT_FALSE(ShowWindow(hWnd, SW_HIDE));
    EXPECT_FALSE(ShowWindow(hWnd, SW_SHOW));
    EXPECT_TRUE(ShowWindow(hWnd, 1));
    EXPECT_TRUE(IsWindowVisible(hWnd));
    EXPECT_TRUE(ShowWindow(hWnd, SW_HIDE));
    EXPECT_FALSE(IsWindowVisible(hWnd));
    EXPECT_THAT(shows, ElementsAre(1u, 0u));
    EXPECT_TRUE(DestroyWindow(hWnd));
}

TEST(Window, EndsOnceAndOnItsOwnThreadOnly)
{
    int ends = 0;
    const Handler handler = [&](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        if (nMsg != DESTROY && nMsg != NCDESTROY) return DefWindowProcA(hWnd, nMsg, wParam, lParam);
        ++ends;
        EXPECT_FALSE(IsWindowVisible(hWnd));
        EXPECT_TRUE(IsWindow(hWnd));
        EXPECT_FALSE(DestroyWindow(hWnd));
        EXPECT_EQ(SendMessageA(hWnd, WM_CLOSE, 0, 0), 0);
        return LRESULT{0};
    };
    const HWND hWnd = Make(&handler, WS_VISIBLE);
    test::InThread([&] {
        EXPECT_FALSE(DestroyWindow(hWnd));
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    });
    EXPECT_TRUE(DestroyWindow(hWnd));
    EXPECT_FALSE(DestroyWindow(hWnd));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_EQ(ends, 2);
}

TEST(Window, EndsAlsoWhenItsProcedureThrows)
{
    const Handler handler = [](HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        if (nMsg == DESTROY) throw std::runtime_error("no");
        return DefWindowProcA(hWnd, nMsg, wParam, lParam);
    };
    const HWND hWnd = Make(&handler);
    EXPECT_THROW(DestroyWindow(hWnd), std::runtime_error);
    EXPECT_FALSE(IsWindow(hWnd));
}

TEST(Window, EndsWithItsThreadUnasked)
{
    HWND hWnd = nullptr;
    bool bHeard = false;
    const Handler handler = [&](HWND h, UINT nMsg, WPARAM wParam, LPARAM lParam) {
        bHeard = bHeard || nMsg == DESTROY || nMsg == NCDESTROY;
        return DefWindowProcA(h, nMsg, wParam, lParam);
    };
    test::InThread([&] {
        for (int i = 0; i < 3; ++i)
            hWnd = Make(&handler, WS_VISIBLE);
        EXPECT_TRUE(IsWindow(hWnd));
    });
    EXPECT_FALSE(IsWindow(hWnd) || IsWindowVisible(hWnd) || bHeard);
}

TEST(Window, HandlesThatNameNoWindowAreHarmless)
{
    std::set<HWND> used;
    for (int i = 0; i < 1'000; ++i) {
        const HWND hWnd = Make();
        EXPECT_TRUE(used.insert(hWnd).second); // never again
        EXPECT_TRUE(DestroyWindow(hWnd));
    }
    const HWND ended = *used.begin();
    for (const HWND hWnd : {Numbered(0), Numbered(1), ended, Numbered(~std::uintptr_t{0})}) {
        DWORD dwProcessId = 1;
        char buffer[8] = "unset";
        MSG msg{hWnd, WM_USER, 0, 0, 0};
        EXPECT_FALSE(IsWindow(hWnd));
        EXPECT_FALSE(IsWindowVisible(hWnd));
        EXPECT_FALSE(ShowWindow(hWnd, SW_SHOW));
        EXPECT_FALSE(DestroyWindow(hWnd));
        EXPECT_EQ(GetWindowProcA(hWnd), nullptr);
        EXPECT_EQ(SetWindowLongPtrA(hWnd, GWLP_USERDATA, 7), 0);
        EXPECT_EQ(GetWindowLongPtrA(hWnd, GWLP_USERDATA), 0);
        EXPECT_FALSE(SetWindowTextA(hWnd, "text"));
        EXPECT_EQ(GetWindowTextA(hWnd, buffer, 8), 0);
        EXPECT_STREQ(buffer, "");
        EXPECT_EQ(GetWindowThreadProcessId(hWnd, &dwProcessId), 0u);
        EXPECT_EQ(dwProcessId, 0u);
        EXPECT_EQ(SendMessageA(hWnd, WM_USER, 1, 2), 0);
        EXPECT_EQ(DispatchMessageA(&msg), 0);
        EXPECT_EQ(DefWindowProcA(hWnd, WM_CLOSE, 0, 0), 0);
        if (!hWnd) continue;
        SetLastError(0);
        EXPECT_FALSE(PostMessage(hWnd, WM_USER, 1, 2));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
        EXPECT_FALSE(PeekMessageA(&msg, hWnd, 0, 0, PM_REMOVE));
        EXPECT_EQ(GetMessageA(&msg, hWnd, 0, 0), -1);
    }
}

TEST(Window, KeepsTextAndUserValue)
{
    const HWND hWnd = Make(nullptr, 0, nullptr);
    EXPECT_EQ(TextOf(hWnd), "");
    EXPECT_TRUE(SetWindowTextA(hWnd, "ab\xD6\xD0"));
    EXPECT_EQ(TextOf(hWnd), "ab\xD6\xD0");
    EXPECT_EQ(TextOf(hWnd, 4), "ab"); // never half a letter
    EXPECT_EQ(TextOf(hWnd, 1), "");
    EXPECT_EQ(GetWindowTextA(hWnd, nullptr, 4), 0);
    char untouched[] = "x";
    EXPECT_EQ(GetWindowTextA(hWnd, untouched, 0), 0);
    EXPECT_EQ(GetWindowTextA(hWnd, untouched, -1), 0);
    EXPECT_STREQ(untouched, "x");
    EXPECT_TRUE(SetWindowTextA(hWnd, nullptr));
    EXPECT_EQ(TextOf(hWnd), "");

    EXPECT_EQ(SetWindowLongPtrA(hWnd, GWLP_USERDATA, INTPTR_MIN), 0);
    EXPECT_EQ(GetWindowLongPtrA(hWnd, GWLP_USERDATA), INTPTR_MIN);
    EXPECT_EQ(SetWindowLongPtrA(hWnd, -4, 1), 0);
    EXPECT_EQ(GetWindowLongPtrA(hWnd, 0), 0);
    EXPECT_EQ(SetWindowLongPtrA(hWnd, GWLP_USERDATA, 0), INTPTR_MIN);
    EXPECT_TRUE(DestroyWindow(hWnd));
}

TEST(WindowClass, NamesAreTakenOnceIgnoringCase)
{
    const auto add = [](const char* pszName) {
        const WNDCLASSA cls{DefWindowProcA, pszName};
        return RegisterClassA(&cls);
    };
    const auto make = [](const char* pszName) { return CreateWindowExA(0, pszName, nullptr, 0, 0, 0, 0, 0); };
    const WORD atom = add("Kx\xB0\x41"); // one letter whose second byte is an "A"
    ASSERT_NE(atom, 0);
    EXPECT_EQ(add("kX\xB0\x41"), 0);
    EXPECT_EQ(GetLastError(), ERROR_CLASS_ALREADY_EXISTS);
    EXPECT_EQ(make("Kx\xB0\x61"), nullptr); // another letter
    EXPECT_EQ(GetLastError(), ERROR_CLASS_DOES_NOT_EXIST);

    const HWND hWnd = make("KX\xB0\x41");
    const HWND hByAtom = make(reinterpret_cast<const char*>(std::uintptr_t{atom}));
    EXPECT_TRUE(hWnd && hByAtom);
    EXPECT_TRUE(DestroyWindow(hByAtom));
    EXPECT_FALSE(UnregisterClassA("kx\xB0\x41"));
    EXPECT_EQ(GetLastError(), ERROR_CLASS_HAS_WINDOWS);
    EXPECT_TRUE(DestroyWindow(hWnd));
    EXPECT_TRUE(UnregisterClassA("kx\xB0\x41"));
    EXPECT_FALSE(UnregisterClassA("kx\xB0\x41"));
    EXPECT_EQ(make(reinterpret_cast<const char*>(std::uintptr_t{atom})), nullptr);

    const WNDCLASSA noProcedure{nullptr, "KXOther"};
    EXPECT_EQ(RegisterClassA(&noProcedure), 0);
    EXPECT_EQ(RegisterClassA(nullptr), 0);
    EXPECT_EQ(add(""), 0);
    EXPECT_EQ(add(nullptr), 0);
    EXPECT_EQ(make(nullptr), nullptr);
    EXPECT_FALSE(UnregisterClassA(nullptr));
}

} // namespace

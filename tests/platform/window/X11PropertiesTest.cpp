// Properties of windows on an X server, by which its manager and others know them.

#include "include/platform/Wnd.h"
#include "tests/platform/gdi/LoadedImage.h"
#include "tests/platform/window/X11Support.h"

namespace {

using namespace test;

using X11PropertiesTest = X11Test;

// A property's bytes.
std::string Numbers(std::initializer_list<std::uint32_t> list)
{
    return {reinterpret_cast<const char*>(std::data(list)), 4 * list.size()};
}

TEST_F(X11PropertiesTest, OthersAreToldWhatAWindowIs)
{
    // "中文" in code page 936.
    const ColorWindow plain(kRed, {0, 0, 50, 50}, 0, "\xD6\xD0\xCE\xC4");
    const ColorWindow framed(kRed, {10, 20, 60, 80}, WS_CAPTION, "framed");
    const ColorWindow nothing(kRed, {5, 6, 5, 6}, WS_POPUP, "nothing");
    const ColorWindow popup(kRed, {0, 0, 50, 50}, WS_POPUP, std::string(100'000, 'x').c_str());
    SetWindowTextA(popup.handle, "\xFF tip");
    ASSERT_TRUE(Soon([&] { return outside->Find("? tip"); }));
    const xcb_window_t idPlain = outside->Find("\xE4\xB8\xAD\xE6\x96\x87");
    const xcb_window_t idFramed = outside->Find("framed");
    const xcb_window_t idPopup = outside->Find("? tip");
    EXPECT_EQ(outside->PlaceOf(outside->Find("nothing")), (RECT{5, 6, 6, 7})); // a server has none so small
    EXPECT_TRUE(outside->IsPopup(idPopup));
    EXPECT_FALSE(outside->IsPopup(idPlain));
    EXPECT_FALSE(outside->IsPopup(idFramed));
    const auto framedHas = [&](const char* pszName) { return outside->Property(idFramed, pszName); };
    EXPECT_EQ(outside->Property(idPlain, "_MOTIF_WM_HINTS"), Numbers({2, 0, 0, 0, 0}));
    EXPECT_EQ(framedHas("WM_NAME"), "framed");
    EXPECT_EQ(framedHas("_NET_WM_NAME"), "framed");
    EXPECT_EQ(framedHas("_MOTIF_WM_HINTS"), "");
    EXPECT_EQ(framedHas("_NET_WM_PID"), Numbers({static_cast<std::uint32_t>(GetCurrentProcessId())}));
    std::array<char, 256> host{};
    gethostname(host.data(), host.size() - 1);
    EXPECT_EQ(framedHas("WM_CLIENT_MACHINE"), host.data());
    EXPECT_EQ(framedHas("WM_PROTOCOLS"), Numbers({outside->Atom("WM_DELETE_WINDOW")}));
    EXPECT_EQ(framedHas("WM_CLASS"), std::string("test.platform.window\0test.platform.window\0", 42));
    EXPECT_EQ(framedHas("WM_HINTS"), Numbers({1, 1, 0, 0, 0, 0, 0, 0, 0})); // the keyboard is wanted
    EXPECT_EQ(framedHas("WM_NORMAL_HINTS"), // a place and a size, with its corner where it is told
              Numbers({1 | 2 | 4 | 8 | 512, 10, 20, 50, 60, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10}));

    const HWND hMade = CreateWindowExA(0, AfxRegisterWndClass(0), "made", WS_CAPTION, 1, 2, 3, 4);
    EXPECT_TRUE(Soon([&] { // a request of its own, behind the title's
        return outside->Property(outside->Find("made"), "WM_NORMAL_HINTS")
            .starts_with(Numbers({1 | 2 | 4 | 8 | 512, 1, 2, 3, 4}));
    }));
    DestroyWindow(hMade);

    EXPECT_EQ(framedHas("_NET_WM_STATE"), "");
    SetWindowPos(framed.handle, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
    ShowWindow(framed.handle, SW_SHOWNA);
    const std::string above = Numbers({outside->Atom("_NET_WM_STATE_ABOVE")});
    EXPECT_TRUE(Soon([&] { return framedHas("_NET_WM_STATE") == above; }));

    // One that is shown asks its manager.
    outside->HearRequests();
    for (const auto& [order, bAbove] : {std::pair{HWND_NOTOPMOST, 0u}, {HWND_TOPMOST, 1u}}) {
        SetWindowPos(framed.handle, order, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
        const std::vector asked{bAbove, outside->Atom("_NET_WM_STATE_ABOVE"), 0u, 1u, 0u}; // a program's wish
        EXPECT_TRUE(Soon([&] { return outside->TakeRequest() == asked; })) << bAbove;
    }
    for (const ColorWindow* one : {&popup, &framed}) { // a pop-up isn't the manager's
        ShowWindow(one->handle, SW_SHOWNA);
        ShowWindow(one->handle, SW_HIDE);
    }
    std::vector<std::uint32_t> hidden;
    EXPECT_TRUE(Soon([&] { return !(hidden = outside->TakeRequest()).empty(); }));
    EXPECT_EQ(hidden, std::vector{idFramed});
}

// An icon of one colour, 0xFF302010 with its opacity.
HICON MakeIcon(int nSide)
{
    Bmp pixel = ToBmp({"K"}, 32);
    pixel.height = 2; // with its mask
    pixel.pixels = Le(0xFF302010, 8);
    return static_cast<HICON>(LoadFile(Ico({pixel.Dib()}), IMAGE_ICON, nSide, nSide));
}

// By the class, or set later; the manager gets it as opacity and colour.
TEST_F(X11PropertiesTest, AWindowHasAnIcon)
{
    const HICON icon = MakeIcon(1);
    ASSERT_TRUE(icon);
    const WNDCLASSA cls{DefWindowProcA, "KXIcon", nullptr, 0, nullptr, icon};
    RegisterClassA(&cls);
    const HWND hWnd = CreateWindowExA(0, "KXIcon", "icon", WS_CAPTION, 0, 0, 10, 10);
    const auto property = [&] { return outside->Property(outside->Find("icon"), "_NET_WM_ICON"); };
    EXPECT_TRUE(Soon([&] {
        return property() == Numbers({1, 1, 0xFF302010});
    })); // a request of its own, behind the title's
    EXPECT_EQ(SendMessageA(hWnd, WM_SETICON, 0, 0), reinterpret_cast<LRESULT>(icon));
    EXPECT_TRUE(Soon([&] { return property().empty(); }));
    EXPECT_EQ(SendMessageA(hWnd, WM_SETICON, 0, reinterpret_cast<LPARAM>(icon)), 0);
    EXPECT_TRUE(Soon([&] { return !property().empty(); }));
    EXPECT_TRUE(DestroyWindow(hWnd));
    EXPECT_TRUE(UnregisterClassA("KXIcon"));
    DestroyIcon(icon);
}

// A request of more than a server takes, here four megabytes, would end the connection.
TEST_F(X11PropertiesTest, AnIconTooLargeForTheServerIsLeftOut)
{
    Begin("640x480x24", {"-maxbigreqsize", "1"});
    const HWND hWnd = Make(nullptr, WS_CAPTION, "icon");
    for (const auto& [side, has] : {std::pair{1'023, true}, {1'024, false}}) {
        const HICON icon = MakeIcon(side);
        SendMessageA(hWnd, WM_SETICON, 0, reinterpret_cast<LPARAM>(icon));
        EXPECT_TRUE(Soon([&, has = has] {
            const xcb_window_t id = outside->Find("icon");
            return id && outside->Property(id, "_NET_WM_ICON").empty() != has;
        })) << side;
        DestroyIcon(icon);
    }
    EXPECT_TRUE(DestroyWindow(hWnd));
}

} // namespace

// Screens of more than one monitor, and of fine dots.

#include "tests/platform/window/X11Support.h"

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
    void Reopen()
    {
        ASSERT_TRUE(KXHost::UseMemoryDesktop());
        ASSERT_TRUE(KXHost::UseDisplay(server->Name().c_str()));
    }
};

TEST_F(X11ScreenTest, TheDesktopIsThePrimaryMonitor)
{
    outside->Cover(0, 0, 240, 480, kGreen);
    outside->AddMonitor("left", 0, 0, 240, 480, false);
    outside->AddMonitor("main", 240, 30, 400, 300, true);
    Reopen();
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 400, 300}));
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 400);
    EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), 300);
    ColorWindow window(kRed, {10, 20, 110, 120}, WS_POPUP, "window");
    ShowSeen(window, kRed, 250, 50);
    EXPECT_NE(outside->Pixel(249, 50), kRed);
    outside->MoveMouse(255, 56);
    EXPECT_TRUE(Pump([&] { return window.Heard("move 0 5,6;"); })) << window.heard;
    EXPECT_EQ(SeenAt(10, 20), kRed);
    EXPECT_NE(SeenAt(9, 20), kRed);
    EXPECT_EQ(SeenAt(399, 449), RGB(0, 0, 0)) << "up to the screen's end";
    EXPECT_EQ(SeenAt(399, 450), CLR_INVALID);
    EXPECT_EQ(SeenAt(400, 449), CLR_INVALID);

    // Another program moves it, to the left monitor.
    outside->Place(outside->Find("window"), 100, 50, 100, 100);
    EXPECT_TRUE(Lies(window.handle, {-140, 20, -40, 120}));

    window.heard.clear();
    outside->AddMonitor("main", 200, 0, 440, 480, true);
    EXPECT_TRUE(Pump([&] { return window.Heard("display 32 440,480;"); })) << window.heard;
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 440, 480}));
    EXPECT_TRUE(Lies(window.handle, {-100, 50, 0, 150}));
    EXPECT_THAT(window.heard, HasSubstr("place 0 -100,50;"));
    EXPECT_EQ(SeenAt(439, 479), RGB(0, 0, 0));

    outside->AddMonitor("main", 220, 0, 420, 480, true);
    EXPECT_TRUE(Lies(window.handle, {-120, 50, -20, 150}));
    EXPECT_TRUE(Pump([&] { return window.Heard("display 32 420,480;"); }));
    window.heard.clear();
    outside->AddMonitor("main", 220, 0, 420, 400, true);
    EXPECT_TRUE(Pump([&] { return window.Heard("display 32 420,400;"); }));
    EXPECT_THAT(window.heard, testing::Not(HasSubstr("place"))) << "only its size changed";
}

TEST_F(X11ScreenTest, WithoutAPrimaryMonitorTheFirstServesAndWithoutAnyTheScreen)
{
    outside->TurnOffMonitors();
    Reopen();
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 640, 480}));
    outside->Cover(0, 0, 1, 1, kGreen);
    EXPECT_EQ(SeenAt(0, 0), kGreen);
    outside->AddMonitor("left", 0, 0, 240, 480, false);
    outside->AddMonitor("right", 240, 0, 400, 300, false);
    Reopen();
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 240, 480}));
}

TEST_F(X11ScreenTest, WindowsAreEnlargedWhereDotsAreFine)
{
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 640);
    outside->SetResources("*color: red\nXft.dpi:\t192\n");
    Reopen();
    EXPECT_EQ(PlaceOf(GetDesktopWindow()), (RECT{0, 0, 320, 240}));
    ColorWindow window(kRed, {10, 20, 61, 71}, WS_POPUP, "window");
    ShowSeen(window, kRed, 20, 40);
    EXPECT_EQ(outside->PlaceOf(outside->Find("window")), (RECT{20, 40, 122, 142}));
    EXPECT_TRUE(Shows(121, 141, kRed));
    const HDC own = GetDC(window.handle);
    SetPixel(own, 3, 5, kBlue);
    ReleaseDC(window.handle, own);
    EXPECT_TRUE(Shows(27, 51, kBlue));
    for (const POINT at : {POINT{26, 50}, POINT{27, 50}, POINT{26, 51}})
        EXPECT_EQ(outside->Pixel(at.x, at.y), kBlue);
    for (const POINT at : {POINT{25, 50}, POINT{28, 50}, POINT{26, 49}, POINT{26, 52}})
        EXPECT_EQ(outside->Pixel(at.x, at.y), kRed);
    EXPECT_EQ(SeenAt(13, 25), kBlue);
    EXPECT_EQ(SeenAt(14, 25), kRed);
    outside->MoveMouse(27, 51);
    EXPECT_TRUE(Pump([&] { return window.Heard("move 0 3,5;"); })) << window.heard;
    // A size that is no multiple is covered to its last pixel.
    outside->Place(outside->Find("window"), 21, 40, 131, 60);
    EXPECT_TRUE(Lies(window.handle, {10, 20, 76, 50}));
    EXPECT_TRUE(Shows(151, 99, kRed));
}

TEST_F(X11ScreenTest, TheEnvironmentHasTheLastWordOfTheScale)
{
    outside->SetResources("Xft.dpi: 192\n");
    for (const auto& [word, width] : {std::pair{"1", 640}, {"3", 214}, {"9", 214}, {"nonsense", 640}}) {
        ASSERT_TRUE(KXHost::UseMemoryDesktop()); // the desktop's thread reads the environment
        setenv("KX_SCALE", word, 1);
        Reopen();
        EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), width) << word;
    }
    ASSERT_TRUE(KXHost::UseMemoryDesktop());
    unsetenv("KX_SCALE");
}

// The server refuses to read beyond its screen, be it by a part of a pixel: here 539 and 430 dots are seen.
TEST_F(X11ScreenTest, TheScreensEndIsReadAsFarAsPixelsAreWhole)
{
    outside->AddMonitor("main", 101, 50, 500, 400, true);
    outside->Cover(101, 50, 3, 3, kGreen);
    ASSERT_TRUE(KXHost::UseMemoryDesktop());
    setenv("KX_SCALE", "3", 1);
    Reopen();
    const Paper copy(180, 144);
    const HDC desktop = GetDC(nullptr);
    BitBlt(copy, 0, 0, 180, 144, desktop, 0, 0, SRCCOPY);
    ReleaseDC(nullptr, desktop);
    EXPECT_EQ(GetPixel(copy, 0, 0), kGreen);
    ASSERT_TRUE(KXHost::UseMemoryDesktop());
    unsetenv("KX_SCALE");
}

// The server shares no memory; where each pixel is nine of its own a row is more than a piece.
TEST_F(X11ScreenTest, ManyPixelsAreSentInPieces)
{
    Begin("1800x1200x24", {"-extension", "MIT-SHM"});
    for (const char* scale : {"1", "3"}) {
        ASSERT_TRUE(KXHost::UseMemoryDesktop());
        setenv("KX_SCALE", scale, 1);
        Reopen();
        const SIZE whole{1800 / std::atoi(scale), 1200 / std::atoi(scale)};
        ColorWindow window(kRed, {0, 0, whole.cx, whole.cy});
        ShowSeen(window, kRed, 1799, 1199);
        for (const POINT at : {POINT{0, 0}, POINT{1799, 0}, POINT{900, 600}, POINT{0, 1199}})
            EXPECT_EQ(outside->Pixel(at.x, at.y), kRed) << scale << ": " << at.x << ", " << at.y;
    }
    ASSERT_TRUE(KXHost::UseMemoryDesktop());
    unsetenv("KX_SCALE");
}

} // namespace

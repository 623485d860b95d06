#include "include/platform/Window.h"
#include "tests/support/Picture.h"
#include "tests/support/Test.h"

using namespace test;
using Surface = LeakTest;

TEST_F(Surface, BeginsWithABlackPixelOfItsOwn)
{
    const HDC dc = CreateCompatibleDC(nullptr);
    const HDC other = CreateCompatibleDC(dc);
    EXPECT_EQ(Read(dc, -1, -1, 2, 2), (Picture{"   ", " . ", "   "}));
    SetPixel(dc, 0, 0, RGB(255, 0, 0));
    EXPECT_EQ(GetPixel(other, 0, 0), 0u);
    EXPECT_EQ(ReleaseDC(nullptr, dc), 0); // it isn't the desktop's
    EXPECT_THAT((std::array{DeleteDC(dc), DeleteDC(dc), DeleteDC(other)}), testing::ElementsAre(1, 0, 1));
    EXPECT_EQ(CreateCompatibleDC(dc), nullptr);
    EXPECT_EQ(CreateCompatibleBitmap(dc, 1, 1), nullptr);
}

TEST_F(Surface, OfTheDesktopShowsItToAll)
{
    const HDC dc = GetDC(nullptr);
    const HDC other = GetDC(nullptr);
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(GetPixel(other, DESKTOP_WIDTH - 1, DESKTOP_HEIGHT - 1), DESKTOP_COLOR);
    EXPECT_EQ(SetPixel(dc, 3, 4, 0xFF123456), 0x123456u);
    EXPECT_EQ(GetPixel(other, 3, 4), 0x123456u);
    SetPixel(dc, 3, 4, DESKTOP_COLOR);
    EXPECT_EQ(DeleteDC(dc), 0);
    EXPECT_THAT((std::array{ReleaseDC(nullptr, dc), ReleaseDC(nullptr, dc), ReleaseDC(nullptr, other)}),
                testing::ElementsAre(1, 0, 1));
    int local = 0;
    EXPECT_EQ(GetDC(reinterpret_cast<HWND>(&local)), nullptr);
}

TEST_F(Surface, OfAWindowIsSeenOnceItIsGivenBack)
{
    const WNDCLASSA windows{DefWindowProcA, "Surface"};
    ASSERT_NE(RegisterClassA(&windows), 0);
    const HWND hWnd = CreateWindowExA(0, "Surface", "", WS_POPUP, DESKTOP_WIDTH - 3, -1, 9, 3);
    ShowWindow(hWnd, SW_SHOWNA);
    const HDC dc = GetDC(hWnd);
    const HDC desktop = GetDC(GetDesktopWindow());
    RECT box;
    EXPECT_EQ(GetClipBox(dc, &box), SIMPLEREGION);
    EXPECT_EQ(box, (RECT{0, 0, 9, 3}));
    const Scoped<HRGN> clip(CreateRectRgn(1, 0, 9, 9));
    SelectClipRgn(dc, clip);
    Rectangle(dc, 0, 0, 9, 3);
    const auto seen = [&] { return Read(desktop, DESKTOP_WIDTH - 4, 0, DESKTOP_WIDTH + 1, 3); };
    EXPECT_EQ(seen(), (Picture{"???? ", "???? ", "???? "}));
    EXPECT_EQ(ReleaseDC(hWnd, dc), 1);
    EXPECT_EQ(seen(), (Picture{"?.WW ", "?... ", "???? "}));
    SetPixel(desktop, DESKTOP_WIDTH - 2, 1, ColorOf('G')); // lies below the window
    EXPECT_EQ(seen()[1], "?... ");
    DestroyWindow(hWnd);
    EXPECT_EQ(seen(), (Picture{"???? ", "??G? ", "???? "}));
    SetPixel(desktop, DESKTOP_WIDTH - 2, 1, DESKTOP_COLOR);
    EXPECT_EQ(ReleaseDC(GetDesktopWindow(), desktop), 1);
    UnregisterClassA("Surface");
    EXPECT_EQ(GetDC(hWnd), nullptr);
}

// Whatever lay in its memory before.
TEST_F(Surface, ANewBitmapIsBlackAndOfASizeWithinBounds)
{
    const Paper paper(1, 1);
    for (int n = 0; n < 20; ++n) {
        {
            const Paper white(60, 40, 'W');
        }
        const Scoped<HBITMAP> bitmap(CreateCompatibleBitmap(paper, 60, 40));
        const HGDIOBJ first = SelectObject(paper, bitmap);
        ASSERT_EQ(Read(paper, 0, 0, 60, 40), Picture(40, std::string(60, '.')));
        SelectObject(paper, first);
    }
    const int limit = static_cast<int>(MAX_BITMAP_PIXELS);
    const std::pair<int, int> wrong[] = {
        {0, 1},         {1, 0},         {-1, 5},      {5, INT_MIN}, {INT_MAX, INT_MAX},
        {limit + 1, 1}, {1, limit + 1}, {8193, 8192}, {INT_MAX, 2}};
    for (const auto& [cx, cy] : wrong)
        EXPECT_EQ(CreateCompatibleBitmap(paper, cx, cy), nullptr) << cx << " by " << cy;
    const Scoped<HBITMAP> tall(CreateCompatibleBitmap(paper, 3, 100'000));
    EXPECT_NE(tall, nullptr);
}

TEST_F(Surface, ClipsToACopyOfARegionWhateverItsBitmap)
{
    const Paper paper(4, 3, 'W');
    const auto box = [&](int kind) {
        RECT rect{};
        EXPECT_EQ(GetClipBox(paper, &rect), kind);
        return rect;
    };
    EXPECT_EQ(box(SIMPLEREGION), (RECT{0, 0, 4, 3}));
    {
        const RECT parts[] = {{0, 0, 1, 1}, {2, 1, 9, 9}};
        const Scoped<HRGN> region(CreateRectsRgn(parts, 2));
        EXPECT_EQ(SelectClipRgn(paper, region), COMPLEXREGION);
        EXPECT_EQ(reinterpret_cast<std::intptr_t>(SelectObject(paper, region)), COMPLEXREGION);
    }
    EXPECT_EQ(box(COMPLEXREGION), (RECT{0, 0, 4, 3}));
    const RECT all{-5, -5, 50, 50};
    FillRect(paper, &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    EXPECT_EQ(SetPixel(paper, 1, 0, 0), CLR_INVALID);
    EXPECT_EQ(paper.Read(), (Picture{".   ", "  ..", "  .."}));

    const Scoped<HRGN> outside(CreateRectRgn(10, 10, 20, 20));
    EXPECT_EQ(SelectClipRgn(paper, outside), NULLREGION);
    EXPECT_EQ(box(NULLREGION), RECT{});
    {
        const Scoped<HBITMAP> larger(CreateCompatibleBitmap(paper, 14, 14)); // the clip stays
        const HGDIOBJ first = SelectObject(paper, larger);
        EXPECT_EQ(box(SIMPLEREGION), (RECT{10, 10, 14, 14}));
        SelectObject(paper, first);
    }
    EXPECT_EQ(SelectClipRgn(paper, nullptr), SIMPLEREGION);
    EXPECT_EQ(paper.Read(), (Picture{".WWW", "WW..", "WW.."}));
    EXPECT_EQ(SelectClipRgn(nullptr, outside), RGN_ERROR);
    EXPECT_EQ(SelectClipRgn(paper, reinterpret_cast<HRGN>(paper.Bitmap())), RGN_ERROR);
    RECT none;
    EXPECT_EQ(GetClipBox(nullptr, &none), RGN_ERROR);
    EXPECT_EQ(GetClipBox(paper, nullptr), RGN_ERROR);
}

TEST_F(Surface, ColoursAndModeGiveTheirOldValue)
{
    const Paper paper(1, 1);
    EXPECT_EQ(SetTextColor(paper, 0xAB0000FF), 0u);
    EXPECT_EQ(GetTextColor(paper), 0x0000FFu);
    EXPECT_EQ(SetBkColor(paper, 7), 0xFFFFFFu);
    EXPECT_EQ(GetBkColor(paper), 7u);
    EXPECT_EQ(SetBkMode(paper, TRANSPARENT), OPAQUE);
    EXPECT_EQ(SetBkMode(paper, 9), 0);
    EXPECT_EQ(GetBkMode(paper), TRANSPARENT);
    for (const COLORREF none :
         {SetTextColor(nullptr, 0), GetTextColor(nullptr), SetBkColor(nullptr, 0), GetBkColor(nullptr)})
        EXPECT_EQ(none, CLR_INVALID);
    EXPECT_EQ(GetBkMode(nullptr), 0);
}

TEST_F(Surface, OfTheDesktopMayBeDrawnOnByThreadsAtOnce)
{
    RunThreads(2, [](int) {
        const HDC dc = GetDC(nullptr);
        const RECT rect{100, 100, 132, 132};
        for (int n = 0; n < 50; ++n) {
            FillRect(dc, &rect, static_cast<HBRUSH>(GetStockObject(n % 2 ? WHITE_BRUSH : BLACK_BRUSH)));
            BitBlt(dc, 104, 104, 20, 20, dc, 100, 100, SRCCOPY);
            EXPECT_NE(GetPixel(dc, 110, 110), CLR_INVALID);
        }
        ReleaseDC(nullptr, dc);
    });
}

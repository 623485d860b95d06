#include "include/platform/Window.h"
#include "tests/support/Picture.h"

#include <functional>
#include <optional>
#include <thread>

// A new bitmap is black, though its pixels are made so as late as can be; and a window shares the pixels of a
// bitmap that covers it, until one of the two is drawn on.

using test::ColorOf;
using test::Paper;
using test::Picture;
using test::Read;
using test::Scoped;

namespace {

// A bitmap of its own in a device context, in memory that something white lay in before.
class NewBitmap
{
public:
    NewBitmap(int cx, int cy) : m_cx(cx), m_cy(cy) { SelectObject(m_dc, m_bitmap); }
    NewBitmap(const NewBitmap&) = delete;
    NewBitmap& operator=(const NewBitmap&) = delete;
    ~NewBitmap()
    {
        DeleteDC(m_dc);
        DeleteObject(m_bitmap);
    }
    operator HDC() const { return m_dc; }
    HBITMAP Handle() const { return m_bitmap; }
    void Fill(RECT rect, char letter) const
    {
        const Scoped<HBRUSH> brush(CreateSolidBrush(ColorOf(letter)));
        FillRect(m_dc, &rect, brush);
    }

private:
    HBITMAP Make() const
    {
        {
            const Paper white(m_cx, m_cy, 'W');
        }
        return CreateCompatibleBitmap(m_dc, m_cx, m_cy);
    }

    int m_cx;
    int m_cy;
    HDC m_dc = CreateCompatibleDC(nullptr);
    HBITMAP m_bitmap = Make();
};

constexpr int kWidth = 160, kHeight = 110; // as large as what is shared

class SharedPixels : public testing::Test
{
protected:
    void SetUp() override
    {
        const WNDCLASSA windows{DefWindowProcA, "Shared"};
        ASSERT_NE(RegisterClassA(&windows), 0);
        m_hWnd = CreateWindowExA(0, "Shared", "", WS_POPUP, 0, 0, kWidth, kHeight);
        m_window = GetDC(m_hWnd);
        m_paper.emplace(kWidth, kHeight, 'R');
        BitBlt(m_window, 0, 0, kWidth, kHeight, *m_paper, 0, 0, SRCCOPY);
    }
    void TearDown() override
    {
        ReleaseDC(m_hWnd, m_window);
        DestroyWindow(m_hWnd);
        UnregisterClassA("Shared");
    }
    Picture Window() const { return Read(m_window, 0, 0, 3, 1); }
    Picture Memory() const { return Read(*m_paper, 0, 0, 3, 1); }

    test::NoLeak m_noLeak;
    HWND m_hWnd = nullptr;
    HDC m_window = nullptr;
    std::optional<Paper> m_paper;
};

} // namespace

TEST(NewBitmap, IsBlackWhereNothingWasWritten)
{
    const test::NoLeak noLeak;
    const Paper red(2, 2, 'R');
    const NewBitmap parts(6, 3);
    parts.Fill({1, 0, 3, 2}, 'G');
    BitBlt(parts, 2, 1, 2, 2, red, 0, 0, SRCCOPY);
    StretchBlt(parts, 5, 2, 9, 9, red, 0, 0, 9, 9, SRCCOPY); // all but a pixel lies outside
    parts.Fill({-5, -5, -1, 9}, 'B');
    EXPECT_EQ(Read(parts, 0, 0, 6, 3), (Picture{".GG...", ".GRR..", "..RR.R"}));

    const NewBitmap clipped(4, 2);
    const Scoped<HRGN> left(CreateRectRgn(0, 0, 1, 2)), right(CreateRectRgn(2, 0, 3, 1));
    CombineRgn(left, left, right, RGN_OR);
    SelectClipRgn(clipped, left);
    clipped.Fill({0, 0, 4, 2}, 'Y');
    SelectClipRgn(clipped, nullptr);
    EXPECT_EQ(Read(clipped, 0, 0, 4, 2), (Picture{"Y.Y.", "Y..."}));
}

TEST(NewBitmap, IsBlackForWhoReadsOrChangesIt)
{
    const test::NoLeak noLeak;
    const Paper green(3, 1, 'G');
    const auto seen = [](const std::function<void(const NewBitmap&)>& use) {
        const NewBitmap bitmap(3, 1);
        use(bitmap);
        return Read(bitmap, 0, 0, 3, 1);
    };
    EXPECT_EQ(seen([](const NewBitmap&) {}), Picture{"..."});
    EXPECT_EQ(seen([](const NewBitmap& bitmap) { SetPixel(bitmap, 1, 0, ColorOf('W')); }), Picture{".W."});
    EXPECT_EQ(seen([&](const NewBitmap& bitmap) {
                  TransparentBlt(bitmap, 0, 0, 2, 1, green, 0, 0, 2, 1, ColorOf('G'));
              }),
              Picture{"..."});
    EXPECT_EQ(seen([](const NewBitmap& bitmap) { // onto itself
                  BitBlt(bitmap, 1, 0, 2, 1, bitmap, 0, 0, SRCCOPY);
              }),
              Picture{"..."});
    EXPECT_EQ(seen([&](const NewBitmap& bitmap) { // from it
                  BitBlt(green, 1, 0, 1, 1, bitmap, 0, 0, SRCCOPY);
              }),
              Picture{"..."});
    EXPECT_EQ(green.Read(), Picture{"G.G"});

    const NewBitmap bits(1, 1);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), 1, 1, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    DWORD pixel = 1;
    EXPECT_EQ(GetDIBits(green, bits.Handle(), 0, 1, &pixel, &info, DIB_RGB_COLORS), 1);
    EXPECT_EQ(pixel, 0u);
}

TEST(NewBitmap, IsWrittenInManyPieces)
{
    const test::NoLeak noLeak;
    constexpr int kSide = 100;
    const NewBitmap chess(kSide, kSide);
    for (int y = 0; y < kSide; ++y)
        for (int x = y % 2; x < kSide; x += 2)
            chess.Fill({x, y, x + 1, y + 1}, 'W');
    EXPECT_EQ(Read(chess, 0, 0, 3, 2), (Picture{"W.W", ".W."}));
    EXPECT_EQ(Read(chess, kSide - 3, kSide - 2, kSide, kSide), (Picture{".W.", "W.W"}));
}

TEST_F(SharedPixels, KeepWhatTheOtherDraws)
{
    SetPixel(*m_paper, 0, 0, ColorOf('B'));
    EXPECT_EQ(Window(), Picture{"RRR"});
    BitBlt(m_window, 0, 0, kWidth, kHeight, *m_paper, 0, 0, SRCCOPY);
    EXPECT_EQ(Window(), Picture{"BRR"});
    const RECT pixel{1, 0, 2, 1};
    const Scoped<HBRUSH> green(CreateSolidBrush(ColorOf('G')));
    FillRect(m_window, &pixel, green);
    EXPECT_EQ(Memory(), Picture{"BRR"});
    m_paper.reset();
    EXPECT_EQ(Window(), Picture{"BGR"});
}

TEST_F(SharedPixels, LastBeyondTheWindow)
{
    ReleaseDC(m_hWnd, m_window);
    m_window = nullptr;
    DestroyWindow(m_hWnd);
    EXPECT_EQ(Memory(), Picture{"RRR"});
    SetPixel(*m_paper, 0, 0, ColorOf('B'));
    EXPECT_EQ(Memory(), Picture{"BRR"});
}

TEST_F(SharedPixels, MayBeDrawnOnByTwoThreads)
{
    std::thread other([hWnd = m_hWnd] {
        const HDC dc = GetDC(hWnd);
        for (int n = 0; n < 200; ++n)
            SetPixel(dc, 1, 0, ColorOf('G'));
        ReleaseDC(hWnd, dc);
    });
    for (int n = 0; n < 200; ++n) {
        SetPixel(*m_paper, 0, 0, ColorOf(n % 2 ? 'B' : 'Y'));
        BitBlt(m_window, 0, 0, kWidth, kHeight, *m_paper, 0, 0, SRCCOPY);
    }
    other.join();
    EXPECT_EQ(Memory(), Picture{"BRR"});
    EXPECT_EQ(Window()[0][0], 'B');
}

TEST_F(SharedPixels, AreCopiedAroundAClip)
{
    const Scoped<HRGN> first(CreateRectRgn(0, 0, 1, 1));
    SelectClipRgn(m_window, first);
    const Paper blue(kWidth, kHeight, 'B');
    BitBlt(m_window, 0, 0, kWidth, kHeight, blue, 0, 0, SRCCOPY);
    SelectClipRgn(m_window, nullptr);
    EXPECT_EQ(Window(), Picture{"BRR"});
    EXPECT_EQ(Memory(), Picture{"RRR"});
}

#include "include/platform/Window.h"
#include "tests/support/Picture.h"

#include <functional>

// A new bitmap is black, whatever lay in its memory before; and a window's pixels are its own.

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

TEST(WindowPixels, AreApartFromTheBitmapThatCoversThem)
{
    const test::NoLeak noLeak;
    const WNDCLASSA windows{DefWindowProcA, "Covered"};
    ASSERT_NE(RegisterClassA(&windows), 0);
    constexpr int kWidth = 160, kHeight = 110;
    const HWND hWnd = CreateWindowExA(0, "Covered", "", WS_POPUP, 0, 0, kWidth, kHeight);
    const HDC window = GetDC(hWnd);
    const auto seen = [&] { return Read(window, 0, 0, 3, 1); };
    {
        const Paper paper(kWidth, kHeight, 'R');
        BitBlt(window, 0, 0, kWidth, kHeight, paper, 0, 0, SRCCOPY);
        BitBlt(window, 0, 0, kWidth, kHeight, window, 0, 0, SRCCOPY);
        EXPECT_EQ(seen(), Picture{"RRR"});
        SetPixel(paper, 0, 0, ColorOf('B'));
        EXPECT_EQ(seen(), Picture{"RRR"});
        BitBlt(window, 0, 0, kWidth, kHeight, paper, 0, 0, SRCCOPY);
        SetPixel(window, 1, 0, ColorOf('G'));
        EXPECT_EQ(Read(paper, 0, 0, 3, 1), Picture{"BRR"});
    }
    EXPECT_EQ(seen(), Picture{"BGR"});
    ReleaseDC(hWnd, window);
    DestroyWindow(hWnd);
    UnregisterClassA("Covered");
}

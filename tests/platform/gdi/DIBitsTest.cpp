#include "tests/platform/gdi/LoadedImage.h"
#include "tests/support/Test.h"

using namespace test;

namespace {

// A header with room for colours behind it, and a mark behind those.
struct Info
{
    BITMAPINFO head{};
    RGBQUAD more[300]{};

    Info() { std::memset(static_cast<void*>(&head.bmiColors), 0xEE, sizeof(RGBQUAD) * 301); }
    Info(int width, int height, WORD depth, DWORD room = 0) : Info()
    {
        head.bmiHeader = {40, width, height, 1, depth, BI_RGB, 0, 0, 0, room, 0};
    }
    // How many bytes behind the header have been written.
    std::size_t Written() const
    {
        std::string bytes(sizeof(RGBQUAD) * 301, '\0');
        std::memcpy(bytes.data(), reinterpret_cast<const char*>(&head) + sizeof(BITMAPINFOHEADER),
                    bytes.size());
        return bytes.find_last_not_of('\xEE') + 1;
    }
};

// The rows that a call copies, each byte behind them being `#`.
std::string Rows(HBITMAP bitmap, Info& info, UINT start, UINT lines, int expected)
{
    std::string rows(4096, '#');
    EXPECT_EQ(GetDIBits(Paper(1, 1), bitmap, start, lines, rows.data(), &info.head, DIB_RGB_COLORS),
              expected);
    return rows.substr(0, rows.find_last_not_of('#') + 1);
}

const Picture picture{"RGBWK", "KKWRG", "WBWBW"};

} // namespace

TEST(GetDIBits, AQueryFillsTheHeaderAlone)
{
    const NoLeak noLeak;
    for (const auto& [depth, size] : std::map<WORD, DWORD>{{4, 12}, {8, 24}, {16, 36}, {24, 48}, {32, 60}}) {
        const Scoped<HBITMAP> bitmap(Load(ToBmp(picture, depth)));
        Info info;
        info.head.bmiHeader.biSize = 40;
        EXPECT_EQ(GetDIBits(Paper(1, 1), bitmap, 0, 1, nullptr, &info.head, DIB_RGB_COLORS), 1);
        const BITMAPINFOHEADER expected{40, 5, 3, 1, depth, BI_RGB, size, 0, 0, 0, 0};
        EXPECT_EQ(std::memcmp(&info.head.bmiHeader, &expected, sizeof expected), 0) << depth;
        EXPECT_EQ(info.Written(), 0u);
    }
    Info info;
    info.head.bmiHeader.biSize = 40;
    const Scoped<HBITMAP> wide(Load(ToBmp({std::string(50, 'R')}, 24)));
    GetDIBits(Paper(1, 1), wide, 0, 0, nullptr, &info.head, DIB_RGB_COLORS);
    EXPECT_EQ(info.head.bmiHeader.biSizeImage, 152u);
}

TEST(GetDIBits, WritesAsManyColoursAsThereIsRoomFor)
{
    const Scoped<HBITMAP> bitmap(Load(ToBmp(picture, 8))); // 8 colours
    for (const auto& [room, written] :
         std::map<DWORD, DWORD>{{0, 0}, {1, 1}, {5, 5}, {8, 8}, {256, 8}, {UINT_MAX, 8}}) {
        Info info(5, 3, 8, room);
        Rows(bitmap, info, 0, 3, 3);
        EXPECT_EQ(info.head.bmiHeader.biClrUsed, written);
        EXPECT_EQ(info.Written(), written * sizeof(RGBQUAD));
    }
    Info info(5, 3, 8, 8);
    Rows(bitmap, info, 0, 3, 3);
    EXPECT_EQ(info.head.bmiColors[0].rgbRed, 0);
    EXPECT_EQ(info.more[0].rgbBlue, 0xFF); // "KB..."
    EXPECT_EQ(info.more[3].rgbRed, 0xFF);  // "....R"
    Info deep(5, 3, 24, 8);
    Rows(bitmap, deep, 0, 3, 3);
    EXPECT_EQ(deep.Written(), 0u);
}

TEST(GetDIBits, CountsLinesFromTheBottom)
{
    const Scoped<HBITMAP> bitmap(Load(ToBmp(picture, 32)));
    const auto packed = [](const Picture& rows) { return ToBmp(rows, 32, true).pixels; };
    Info up(5, 3, 32);
    EXPECT_EQ(Rows(bitmap, up, 1, 2, 2), packed({picture[1], picture[0]}));
    EXPECT_EQ(Rows(bitmap, up, 2, 9, 1), packed({picture[0]}));
    EXPECT_EQ(Rows(bitmap, up, 1, UINT_MAX, 2), packed({picture[1], picture[0]}));
    EXPECT_EQ(Rows(bitmap, up, 3, 1, 0), "");
    EXPECT_EQ(Rows(bitmap, up, UINT_MAX, UINT_MAX, 0), "");
    EXPECT_EQ(Rows(bitmap, up, 0, 0, 0), "");
    Info down(5, -3, 32);
    EXPECT_EQ(Rows(bitmap, down, 1, 2, 2), packed({picture[0], picture[1]}));
    EXPECT_EQ(Rows(bitmap, down, 0, 1, 1), packed({picture[2]}));
}

TEST(GetDIBits, ConvertsBetweenDepths)
{
    const Paper paper({"RGBWK"});
    const auto as = [&](WORD depth) {
        Info info(5, 1, depth);
        return Rows(paper.Bitmap(), info, 0, 1, 1);
    };
    for (const WORD depth : {WORD{16}, WORD{24}, WORD{32}})
        EXPECT_EQ(as(depth), ToBmp({"RGBWK"}, depth).pixels) << depth;
    SetPixel(paper, 0, 0, RGB(0x84, 0x42, 0x21));
    EXPECT_EQ(as(16).substr(0, 2), Le(0x10 << 10 | 8 << 5 | 4, 2)); // the upper five bits of each
    Info wide(50, 1, 24);
    EXPECT_EQ(Rows(Paper(50, 1).Bitmap(), wide, 0, 1, 1), std::string(152, '\0')); // in steps of four
    const Scoped<HBITMAP> four(Load(ToBmp(picture, 4)));
    Info eight(5, 3, 8, 8);
    EXPECT_EQ(Rows(four, eight, 0, 3, 3), ToBmp(picture, 8).pixels);
    Info one(5, 3, 1);
    EXPECT_EQ(Rows(four, one, 0, 3, 0), ""); // it can't count eight colours
    const Picture two{"KWKWW"};
    const Scoped<HBITMAP> few(Load(ToBmp(two, 8, false, "WK"))); // two colours: any depth counts them
    for (const WORD depth : {WORD{1}, WORD{4}, WORD{8}}) {
        Info info(5, 1, depth);
        EXPECT_EQ(Rows(few, info, 0, 1, 1), ToBmp(two, depth, false, "WK").pixels) << depth;
    }
    Info none(5, 1, 8);
    EXPECT_EQ(Rows(paper.Bitmap(), none, 0, 1, 0), ""); // no palette
}

TEST(GetDIBits, GivesTheNearestColourOfWhatWasDrawnAndTheFirstOfEqualOnes)
{
    const Scoped<HBITMAP> bitmap(Load(ToBmp({"KKKKKKKK"}, 8, false, "KRGWB")));
    const Paper dc(1, 1);
    const HGDIOBJ first = SelectObject(dc, bitmap);
    const COLORREF drawn[] = {RGB(0, 0, 0),    RGB(200, 30, 30), RGB(1, 128, 2),   RGB(250, 251, 200),
                              RGB(60, 60, 60), RGB(200, 30, 30), RGB(30, 30, 200), RGB(30, 30, 100)};
    for (int x = 0; x < 8; ++x)
        SetPixel(dc, x, 0, drawn[x]);
    Info info(8, 1, 8);
    const std::string rows = Rows(bitmap, info, 0, 1, 1); // while it is selected
    EXPECT_EQ(rows, std::string("\0\1\2\3\0\1\4\0", 8));
    // The first of equal colours in the palette has the index. What was drawn elsewhere has a fourth byte
    // of 0.
    Bmp bmp = ToBmp({"RGWGRK"}, 8, true, "RGWRGK");
    bmp.pixels = Le(0x05'02'04'01'03'00, 8);
    const Scoped<HBITMAP> equal(Load(bmp));
    SelectObject(dc, equal);
    Info six(6, 1, 8);
    EXPECT_EQ(Rows(equal, six, 0, 1, 1), Le(0x05'02'01'01'00'00, 8));
    const Paper copy(6, 1);
    BitBlt(copy, 0, 0, 3, 1, dc, 0, 0, SRCCOPY);
    TransparentBlt(copy, 3, 0, 2, 1, dc, 3, 0, 2, 1, 0x123456);
    StretchBlt(copy, 5, 0, 1, 1, dc, 4, 0, 2, 1, SRCCOPY);
    Info deep(6, 1, 32);
    const std::string copied = Rows(copy.Bitmap(), deep, 0, 1, 1);
    for (std::size_t n = 3; n < 24; n += 4)
        EXPECT_EQ(copied[n], 0) << n;
    SelectObject(dc, first);
}

TEST(GetDIBits, RefusesBadHandlesAndHeaders)
{
    const Paper paper(5, 3);
    Info good(5, 3, 32);
    std::array<DWORD, 15> bits{};
    EXPECT_EQ(GetDIBits(nullptr, paper.Bitmap(), 0, 3, bits.data(), &good.head, DIB_RGB_COLORS), 0);
    EXPECT_EQ(GetDIBits(paper, nullptr, 0, 3, bits.data(), &good.head, DIB_RGB_COLORS), 0);
    EXPECT_EQ(GetDIBits(paper, paper.Bitmap(), 0, 3, bits.data(), nullptr, DIB_RGB_COLORS), 0);
    EXPECT_EQ(GetDIBits(paper, paper.Bitmap(), 0, 3, bits.data(), &good.head, 1), 0);
    EXPECT_EQ(GetDIBits(paper, paper.Bitmap(), 0, 3, nullptr, &good.head, DIB_RGB_COLORS), 3);
    const std::tuple<DWORD, LONG, LONG, WORD, WORD, DWORD> wrong[] = {
        {0, 5, 3, 1, 32, 0},      {124, 5, 3, 1, 32, 0},          {40, 6, 3, 1, 32, 0}, {40, -5, 3, 1, 32, 0},
        {40, 5, 2, 1, 32, 0},     {40, 5, INT_MIN, 1, 32, 0},     {40, 5, 3, 0, 32, 0}, {40, 5, 3, 1, 2, 0},
        {40, 5, 3, 1, 0xFFFF, 0}, {40, 5, 3, 1, 32, BI_BITFIELDS}};
    for (const auto& [size, cx, cy, planes, depth, compression] : wrong) {
        Info info;
        info.head.bmiHeader = {size, cx, cy, planes, depth, compression, 0, 0, 0, 0, 0};
        EXPECT_EQ(GetDIBits(paper, paper.Bitmap(), 0, 3, bits.data(), &info.head, DIB_RGB_COLORS), 0)
            << size << ' ' << cx << ' ' << cy << ' ' << planes << ' ' << depth;
        EXPECT_EQ(info.Written(), 0u);
    }
}

#include "tests/platform/gdiplus/Sheet.h"

using namespace test;

namespace {

using Draw = DrawingTest;

// A picture of 256 by 256 pixels.
template <class Pixel>
Row Square(Pixel&& pixel)
{
    Row row;
    for (ARGB y = 0; y < 256; ++y)
        for (ARGB x = 0; x < 256; ++x)
            row.push_back(pixel(x, y));
    return row;
}

constexpr ARGB Of(ARGB alpha, int red, int green, int blue)
{
    return alpha << 24 | static_cast<ARGB>(red << 16 | green << 8 | blue);
}

ColorMatrix Diagonal(float red, float green, float blue, float alpha)
{
    return {
        {{red, 0, 0, 0, 0}, {0, green, 0, 0, 0}, {0, 0, blue, 0, 0}, {0, 0, 0, alpha, 0}, {0, 0, 0, 0, 1}}};
}

// One row of pixels drawn one to one through attributes.
Row Through(const ImageAttributes& attributes, const Row& from, PixelFormat format = PixelFormat32bppARGB)
{
    const int nCount = static_cast<int>(from.size());
    Sheet source(nCount, from, format);
    Sheet sheet(nCount, 1);
    const auto width = static_cast<float>(nCount);
    EXPECT_EQ(sheet.graphics.DrawImage(&source.bitmap, 0.F, 0.F, width, 1.F, 0.F, 0.F, width, 1.F, UnitPixel,
                                       &attributes),
              Ok);
    return sheet.pixels;
}

} // namespace

// Every alpha over every shade, or over every alpha, against the rule in plain arithmetic.
TEST_F(Draw, BlendsByTheAlphaRoundingToTheNearest)
{
    Sheet source(256, Square([](ARGB alpha, ARGB) { return Of(alpha, 255, 200, 0); }));
    Sheet opaque(256, Square([](ARGB, ARGB shade) { return Of(7, 99, static_cast<int>(shade), 50); }),
                 PixelFormat32bppRGB);
    Sheet straight(256, Square([](ARGB, ARGB alpha) { return Of(alpha, 1, 100, 255); }));
    for (Sheet* sheet : {&opaque, &straight})
        EXPECT_EQ(sheet->graphics.DrawImage(&source.bitmap, 0, 0), Ok);

    EXPECT_EQ(opaque.pixels, Square([](ARGB alpha, ARGB shade) {
                  const auto mix = [alpha](double above, double below) {
                      return static_cast<int>(std::lround((above * alpha + below * (255 - alpha)) / 255));
                  };
                  return Of(0, mix(255, 99), mix(200, shade), mix(0, 50));
              }));
    EXPECT_EQ(straight.pixels, Square([](ARGB above, ARGB below) {
                  const double part = above * 255.0;
                  const double rest = below * (255.0 - above);
                  if (above == 0) return Of(below, 1, 100, 255);
                  const auto mix = [=](double a, double b) {
                      return static_cast<int>(std::lround((a * part + b * rest) / (part + rest)));
                  };
                  return Of(static_cast<ARGB>(std::lround((part + rest) / 255)), mix(255, 1), mix(200, 100),
                            mix(0, 255));
              }));
}

TEST_F(Draw, CutsToWhatTheTargetIsNow)
{
    Sheet red(4, Row(16, 0xFFFF0000), PixelFormat32bppRGB);
    const Paper paper(6, 4, 'W');
    Graphics graphics(static_cast<HDC>(paper));
    graphics.DrawImage(&red.bitmap, -2, -3);
    graphics.DrawImage(&red.bitmap, 5, 3);
    EXPECT_EQ(paper.Read(), (Picture{"RRWWWW", "WWWWWW", "WWWWWW", "WWWWWR"}));
    const HBITMAP other = CreateCompatibleBitmap(paper, 1, 1);
    const HGDIOBJ first = SelectObject(paper, other);
    EXPECT_EQ(graphics.DrawImage(&red.bitmap, 0, 0), Ok);
    EXPECT_EQ(LetterOf(GetPixel(paper, 0, 0)), 'R') << "draws on what is selected now";
    DeleteObject(SelectObject(paper, first));
}

TEST_F(Draw, PiecesUnderAClipOfManyRectanglesMakeTheWhole)
{
    Sheet red(1, Row(1, 0xFFFF0000), PixelFormat32bppRGB);
    const LinearGradientBrush brush({0, 0}, {0, 1}, Color(255, 255, 0, 0), Color(255, 255, 0, 0));
    const Scoped<HRGN> clip(CreateRectRgn(0, 0, 0, 0));
    Picture expected(24, std::string(40, 'W'));
    for (int y = 0; y < 24; y += 2)
        for (int x = y % 4; x < 40; x += 4) {
            const Scoped<HRGN> box(CreateRectRgn(x, y, x + 3, y + 2));
            CombineRgn(clip, clip, box, RGN_OR);
            for (const int nRow : {y, y + 1})
                expected[static_cast<std::size_t>(nRow)]
                    .replace(static_cast<std::size_t>(x), 3, "RRR")
                    .resize(40);
        }
    for (const bool bFill : {false, true}) {
        const Paper paper(40, 24, 'W');
        SelectClipRgn(paper, clip);
        Graphics graphics(static_cast<HDC>(paper));
        for (int y = -1; y < 24; y += 5)
            for (int x = -2; x < 40; x += 7)
                bFill ? graphics.FillRectangle(&brush, x, y, 7, 5)
                      : graphics.DrawImage(&red.bitmap, x, y, 7, 5);
        SelectClipRgn(paper, nullptr);
        EXPECT_EQ(paper.Read(), expected) << bFill;
    }
}

TEST_F(Draw, DrawsAPictureOnItself)
{
    Sheet sheet(3, {0xFF030201, 0xFF060504, 0xFF090807});
    EXPECT_EQ(sheet.graphics.DrawImage(&sheet.bitmap, 1, 0), Ok);
    EXPECT_EQ(sheet.pixels, (Row{0xFF030201, 0xFF030201, 0xFF060504}));
    Sheet rows(2, Grays({1, 2, 3, 4}));
    EXPECT_EQ(rows.graphics.DrawImage(&rows.bitmap, 1, 1), Ok);
    EXPECT_EQ(rows.pixels, Grays({1, 2, 3, 1}));
}

TEST_F(Draw, ChangesColoursByAMatrix)
{
    ImageAttributes attributes;
    const ColorMatrix gray{{{0.3F, 0.3F, 0.3F, 0, 0},
                            {0.59F, 0.59F, 0.59F, 0, 0},
                            {0.11F, 0.11F, 0.11F, 0, 0},
                            {0, 0, 0, 1, 0},
                            {0, 0, 0, 0, 1}}};
    EXPECT_EQ(attributes.SetColorMatrix(&gray), Ok);
    // 76.5; 150.45; 28.05; 255; 0.3 + 1.18 + 0.33 = 1.81; 29.5; 30 + 118 + 5.5 = 153.5, each alpha as it was.
    EXPECT_EQ(Through(attributes,
                      {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0x80FFFFFF, 0x01010203, 0xFF003200, 0xFE64C832}),
              (Row{0xFF4D4D4D, 0xFF969696, 0xFF1C1C1C, 0x80FFFFFF, 0x01020202, 0xFF1E1E1E, 0xFE9A9A9A}));
    EXPECT_EQ(Through(attributes, {0x00FF0000}, PixelFormat32bppRGB), Row{0xFF4D4D4D});
    for (const auto& [nOther, color] : {std::pair{1, 0xFF4D004D}, {2, 0xFF4D4D00}}) {
        ColorMatrix two = gray; // of the three channels
        two.m[0][nOther] = 0;
        attributes.SetColorMatrix(&two);
        EXPECT_EQ(Through(attributes, {0xFFFF0000}), Row{color});
    }
    ColorMatrix half = gray;
    half.m[3][3] = 0.5F;
    attributes.SetColorMatrix(&half);
    EXPECT_EQ(Through(attributes, {0xFFFF0000}), Row{0x804D4D4D});

    // Out of range, alpha from a colour, and something added.
    ColorMatrix matrix = Diagonal(2, -1, 0.5F, 0);
    matrix.m[0][3] = 1;
    matrix.m[4][2] = 0.2F;
    attributes.SetColorMatrix(&matrix);
    EXPECT_EQ(Through(attributes, {0xFF60FF10, 0x0080FF11, 0xFFFFFFFF}),
              (Row{0x60C0003B, 0x80FF003C, 0xFFFF00B3}));
    const ColorMatrix green = Diagonal(1, 0.5F, 1, 1);
    attributes.SetColorMatrix(&green);
    EXPECT_EQ(Through(attributes, {0xFF604020}), Row{0xFF602020});
    for (float& entry : matrix.m[1])
        entry = std::numeric_limits<float>::max();
    for (float& entry : matrix.m[0])
        entry = -std::numeric_limits<float>::max();
    attributes.SetColorMatrix(&matrix);
    EXPECT_THAT(Through(attributes, {0xFFFFFFFF}), testing::SizeIs(1)) << "no number, and no harm";
}

TEST_F(Draw, SetsAndTakesAwayTheMatrix)
{
    const ImageAttributes attributes;
    const auto draw = [&] { return Through(attributes, {0xFF808080})[0]; };
    const auto set = [&](int bEnable, const ColorMatrix* matrix, int nType = 0, int nFlags = 0,
                         const ColorMatrix* pGray = nullptr) {
        const auto type = static_cast<ColorAdjustType>(nType);
        const auto flags = static_cast<ColorMatrixFlags>(nFlags);
        return GdipSetImageAttributesColorMatrix(attributes.Native(), type, bEnable, matrix, pGray, flags);
    };
    const ColorMatrix red = Diagonal(1, 0, 0, 1);
    ColorMatrix bad = red;
    bad.m[4][4] = NAN;
    EXPECT_EQ(draw(), 0xFF808080);
    EXPECT_EQ(set(1, &red), Ok);
    EXPECT_EQ(set(1, nullptr), InvalidParameter);
    EXPECT_EQ(set(1, &bad), InvalidParameter);
    EXPECT_EQ(set(0, nullptr, 1), NotImplemented);
    EXPECT_EQ(set(0, nullptr, 0, 1), NotImplemented);
    EXPECT_EQ(set(0, nullptr, 0, 0, &red), NotImplemented);
    EXPECT_EQ(draw(), 0xFF800000);
    EXPECT_EQ(set(0, nullptr), Ok);
    EXPECT_EQ(draw(), 0xFF808080);
}

TEST_F(Draw, RefusesWhatIsNoNumber)
{
    Sheet source(1, Row{0xFFFFFFFF});
    Sheet sheet(1, 1);
    for (const float bad : {NAN, INFINITY, -INFINITY})
        for (std::size_t n = 0; n < 8; ++n) {
            float v[8] = {0, 0, 1, 1, 0, 0, 1, 1};
            v[n] = bad;
            EXPECT_EQ(sheet.graphics.DrawImage(&source.bitmap, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7],
                                               UnitPixel),
                      InvalidParameter);
        }
    EXPECT_EQ(sheet.graphics.DrawImage(&source.bitmap, 0.F, 0.F, 1.F, 1.F, 0.F, 0.F, 1.F, 1.F, UnitDisplay),
              NotImplemented);
    EXPECT_EQ(sheet.pixels, Row{0});
}

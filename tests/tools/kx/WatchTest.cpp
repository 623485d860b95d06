#include "tests/platform/window/XClient.h"
#include "tests/skin/SkinTree.h"
#include "tests/support/XServer.h"
#include "tests/tools/kx/Tool.h"

namespace {

constexpr COLORREF kProblemGround = RGB(255, 240, 238);
constexpr POINT kTitle{200, 90};    // of the first frame, above its text
constexpr POINT kLowest{1015, 875}; // where lines of problems stand, to the right of their texts

struct Watch : test::Running
{
    using Running::Running;

    // An editor's write may be seen half done, so others may come before. False at the end.
    bool Says(const std::string& expected)
    {
        std::string line;
        do
            line = Line();
        while (!line.empty() && line != expected);
        return line == expected;
    }
};

// Whatever becomes of the skin is seen in the window and said, with nobody's help.
TEST(WatchedSkin, IsDrawnAnewAndKeptWhileItIsBroken)
{
    const test::TempDir dir;
    ASSERT_EQ(test::Kx(dir, "skin new s").nCode, 0);
    const test::XServer server("1100x900x24");
    test::XClient outside(server.Name());
    const auto awaitColor = [&](POINT at, COLORREF clr) {
        test::Await([&] { return outside.Pixel(at.x, at.y) == clr; });
    };
    const std::string title = "s/Common/Window/Frame_Title.bmp", box = "s/Common/Button/CheckBox.bmp";
    const std::string broken = "the skin has errors: the sheet before stays";
    Watch watch("skin watch '" + dir.Path("s") + "'", "DISPLAY=" + server.Name());
    ASSERT_TRUE(watch.Says("drawn"));
    awaitColor(kTitle, RGB(72, 110, 152));

    dir.Write(title, test::BmpFile(40, 60));
    EXPECT_TRUE(watch.Says("drawn"));
    awaitColor(kTitle, RGB(255, 0, 0));

    std::filesystem::rename(dir.Path(box), dir.Path("box"));
    EXPECT_TRUE(watch.Says(broken));
    EXPECT_EQ(watch.Line(),
              "  Common\\Button\\CheckBox.bmp: is missing: nothing is drawn where it is needed");
    awaitColor(kLowest, kProblemGround);
    dir.Write(title, test::ToBmp(test::Plain(40, 60, 'G'), 24).File());
    EXPECT_TRUE(watch.Says(broken));
    awaitColor(kLowest, kProblemGround);
    EXPECT_EQ(outside.Pixel(kTitle.x, kTitle.y), RGB(255, 0, 0));

    std::filesystem::rename(dir.Path("box"), dir.Path(box));
    EXPECT_TRUE(watch.Says("drawn"));
    awaitColor(kTitle, RGB(0, 255, 0));
    EXPECT_NE(outside.Pixel(kLowest.x, kLowest.y), kProblemGround);

    std::filesystem::rename(dir.Path("s"), dir.Path("old")); // as what replaces a whole directory does
    EXPECT_TRUE(watch.Says(broken));
    std::filesystem::rename(dir.Path("old"), dir.Path("s"));
    EXPECT_TRUE(watch.Says("drawn"));

    outside.Focus(outside.Find("kx skin watch"));
    outside.Type(outside.KeyOf(0xFF1B)); // Escape
    EXPECT_EQ(watch.End(), 0);
}

} // namespace

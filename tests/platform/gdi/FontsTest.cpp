#include "tests/support/Picture.h"
#include "tests/support/Test.h"

#include <barrier>

namespace {

LONG WidthOf(const char* pszFace, bool bItalic, const char* psz)
{
    const test::Paper paper(4, 4);
    LOGFONTA log{};
    log.lfHeight = 100;
    log.lfItalic = bItalic;
    std::strncpy(log.lfFaceName, pszFace, sizeof(log.lfFaceName) - 1);
    const HFONT font = CreateFontIndirectA(&log);
    const HGDIOBJ old = SelectObject(paper, font);
    SIZE size{};
    GetTextExtentPoint32A(paper, psz, static_cast<int>(std::strlen(psz)), &size);
    SelectObject(paper, old);
    DeleteObject(font);
    return size.cx;
}

// Two faces of the system under other descriptions: a slanted one that all can tell by its even widths, and
// one of pixels.
constexpr const char* kFaces = R"(<fontconfig>
<dir>/usr/share/fonts</dir>
<match target="scan"><test name="family"><string>DejaVu Sans Mono</string></test>
<edit name="family"><string>DejaVu Sans</string></edit><edit name="slant"><int>100</int></edit></match>
<match target="scan"><test name="family"><string>DejaVu Serif</string></test>
<edit name="scalable"><bool>false</bool></edit></match>
<match target="pattern"><edit name="family" mode="append"><string>DejaVu Sans</string></edit></match>
<cachedir>)";

// In a process of its own: the system's faces are looked for once.
TEST(FontsDeathTest, AreTheSlantedAndTheScalableFacesThatTheSystemHas)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const test::TempDir dir;
    const std::string path = dir.Write("fonts.conf", kFaces + dir.Path("cache") + "</cachedir></fontconfig>");
    const auto run = [&] {
        setenv("FONTCONFIG_FILE", path.c_str(), 1);
        EXPECT_EQ(WidthOf("DejaVu Sans", true, "i"), WidthOf("DejaVu Sans", true, "W"));
        EXPECT_NE(WidthOf("DejaVu Sans", false, "i"), WidthOf("DejaVu Sans", false, "W"));
        EXPECT_EQ(WidthOf("DejaVu Serif", false, "W"), WidthOf("DejaVu Sans", false, "W"));
        std::_Exit(testing::Test::HasFailure());
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

// Faces that nobody uses any more end on the threads that delete their fonts, several at once.
TEST(Fonts, AreMadeMeasuredAndEndedOnSeveralThreads)
{
    const test::NoLeak noLeak;
    std::barrier allMade(4);
    test::RunThreads(4, [&](int nThread) {
        const test::Paper paper(4, 4);
        for (int nRound = 0; nRound < 2; ++nRound) {
            std::vector<HFONT> fonts;
            for (int n = 0; n < 24; ++n) {
                LOGFONTA log{};
                log.lfHeight = 10 + 24 * (2 * nThread + nRound) + n;
                fonts.push_back(CreateFontIndirectA(&log));
                const HGDIOBJ old = SelectObject(paper, fonts.back());
                SIZE size;
                EXPECT_EQ(GetTextExtentPoint32A(paper, "x", 1, &size), 1);
                EXPECT_EQ(size.cy, log.lfHeight);
                SelectObject(paper, old);
            }
            allMade.arrive_and_wait(); // so that they end at once
            for (const HFONT font : fonts)
                EXPECT_EQ(DeleteObject(font), 1);
        }
    });
}

} // namespace

#include "tests/skin/SkinTree.h"
#include "tests/tools/kx/Tool.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// A skin that `kx skin new` made.
struct Skin : testing::Test
{
    Skin() { EXPECT_EQ(test::Kx(dir, "skin new s").nCode, 0); }

    void SetIni(const std::string& text) const { dir.Write("s/Skin.ini", text); }
    // The findings, but for files of backgrounds that aren't in use.
    std::vector<std::string> Check() const
    {
        std::vector<std::string> lines = test::Kx(dir, "skin check s").lines;
        std::erase_if(lines, [](const std::string& line) { return line.ends_with("[skin.unused-file]"); });
        return lines;
    }

    test::TempDir dir;
};

TEST_F(Skin, ANewOneIsCleanAndHasEveryKey)
{
    const auto checked = test::Kx(dir, "skin check s");
    EXPECT_EQ(checked.nCode, 0);
    EXPECT_EQ(checked.last, "0 errors, 0 warnings, 4 notes");
    EXPECT_THAT(checked.lines, testing::Each(HasSubstr("is read with BkgType=")));
    EXPECT_THAT(checked.lines,
                testing::Contains("Common/Window/WndBkg.bmp: note: is read with BkgType=singlebmp alone "
                                  "[skin.unused-file]"));
    EXPECT_THAT(dir.Read("s/Skin.ini"), HasSubstr("\r\n; text\r\nTextColor=RGB(0,0,0)\r\n"));
    EXPECT_EQ(test::Kx(dir, "skin new s").nCode, 2); // what is there stays
}

TEST_F(Skin, LacksTheFilesOfItsOwnBackgroundAlone)
{
    std::filesystem::remove(dir.Path("s/Common/Window/WndBkg.bmp"));
    EXPECT_THAT(Check(), ElementsAre());
    SetIni("[Background]\nBkgType=SingleBMP\n");
    EXPECT_THAT(Check(), ElementsAre("Common/Window/WndBkg.bmp: error: is missing: nothing is drawn where it "
                                     "is needed [skin.missing-file]"));
}

// Everything that the checks know of `Skin.ini`, each with the line that it gives.
TEST_F(Skin, FindsWhatIsWrongInSkinIni)
{
    const std::string color = " is no colour, which is three numbers from 0 to 255; ";
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"[COLOR]\nTextColor=1,2,3\nBackColor=\n", {}},
        {"\xEF\xBB\xBF[COLOR]\n", {}},
        {"a=1\n",
         {"1:1: warning: key a stands before the first section, where nothing reads it [skin.no-section]"}},
        {"[Colour]\n",
         {"1:2: warning: nothing reads section [Colour]; did you mean \"COLOR\"? [skin.unknown-section]"}},
        {"[SysButton]\nautoali=1\n",
         {"2:1: warning: nothing reads key autoali; did you mean \"AutoAlign\"? [skin.unknown-key]"}},
        {"[x]\ny=1\n", {"1:2: warning: nothing reads section [x] [skin.unknown-section]"}},
        {"[Coxyz]\n", {"1:2: warning: nothing reads section [Coxyz] [skin.unknown-section]"}},
        {"[But]\n[Butt]\n[borderwxyz]\n",
         {"1:2: warning: nothing reads section [But] [skin.unknown-section]",
          "2:2: warning: nothing reads section [Butt]; did you mean \"Button\"? [skin.unknown-section]",
          "3:2: warning: nothing reads section [borderwxyz]; did you mean \"Border\"? "
          "[skin.unknown-section]"}},
        {"[COLOR]\n[Border]\n[color]\n",
         {"3:2: warning: section [color] stands at line 1 already, and only that one is read "
          "[skin.section-twice]"}},
        {"[COLOR]\nTextColour=1,2,3\n",
         {"2:1: warning: nothing reads key TextColour; did you mean \"TextColor\"? [skin.unknown-key]"}},
        {"[COLOR]\nDrawType=1\n",
         {"2:1: warning: nothing reads key DrawType here: it belongs to section [Border] "
          "[skin.unknown-key]"}},
        {"[COLOR]\n; a remark\n  TextColor\n",
         {"3:3: warning: \"TextColor\" is no key: it has no \"=\" [skin.no-key]"}},
        {"[Border]\nDrawType=1\ndrawtype=2\n",
         {"3:1: warning: key drawtype stands at line 2 already, and only that one is read [skin.key-twice]"}},
        {"[COLOR]\nTextColor = red\nBackColor=\"1,2\"\nTitleColor=1,2,256\n",
         {"2:13: error: \"red\"" + color + "RGB(0,0,0) is taken [skin.bad-color]",
          "3:12: error: \"1,2\"" + color + "RGB(255,255,255) is taken [skin.bad-color]",
          "4:12: error: \"1,2,256\"" + color + "RGB(255,255,255) is taken [skin.bad-color]"}},
        {"[SysButton]\nAutoAlign=yes\n",
         {"2:11: error: \"yes\" is neither TRUE nor FALSE; FALSE is taken [skin.bad-flag]"}},
        {"[SysButton]\nButton_Space=wide\nSysMenu_Top=12px\nSysMenu_Left=99999999999\nTitleText_Top=-1\n"
         "MinButton_Offset=-4\n",
         {"2:14: error: \"wide\" is no number; 0 is taken [skin.bad-number]",
          "3:13: warning: of \"12px\" only 12 is read [skin.bad-number]",
          "4:14: error: \"99999999999\" is beyond the numbers there are; 2147483647 is taken "
          "[skin.bad-number]",
          "5:15: warning: -1 is less than nothing [skin.negative]"}},
        {"[RoundCorner]\nCornerPath1=0,5|1;3|2,2|3px,1\n",
         {"2:13: error: \"1;3\" is no point, as in 0,5|1,3; it is passed over [skin.bad-point]",
          "2:13: error: \"3px,1\" is no point, as in 0,5|1,3; 3,1 is taken [skin.bad-point]"}},
        {"[Background]\nBkgType=tiled\n",
         {"2:9: error: \"tiled\" is no type of background: default, colorfill, singlebmp or multibmp; "
          "default "
          "is taken [skin.bad-background]"}},
    };
    for (const auto& [pszIni, findings] : cases) {
        SetIni(pszIni);
        std::vector<std::string> expected;
        for (const std::string& finding : findings)
            expected.push_back("Skin.ini:" + finding);
        EXPECT_THAT(Check(), testing::ElementsAreArray(expected)) << pszIni;
    }
    SetIni("[RoundCorner]\nCornerMask1=" + std::string(256, 'x') + "\n");
    EXPECT_THAT(Check(),
                ElementsAre("Skin.ini:2:13: warning: of this value only the first 255 bytes are read "
                            "[skin.long-value]"));
    std::filesystem::remove(dir.Path("s/Skin.ini"));
    EXPECT_THAT(Check(), ElementsAre("Skin.ini: error: can't be read: a directory without it is no skin, and "
                                     "every key takes its default [skin.no-ini]"));
}

TEST_F(Skin, FindsWhatIsWrongWithFiles)
{
    const std::string push = "s/Common/Button/PushButton.bmp";
    const std::string shown = "Common/Button/PushButton.bmp: ";
    const auto expect = [&](const char* pszFinding) {
        EXPECT_THAT(Check(), ElementsAre(shown + pszFinding));
    };
    std::filesystem::remove(dir.Path(push));
    expect("error: is missing: nothing is drawn where it is needed [skin.missing-file]");
    dir.Write(push, "a text");
    expect("error: is no BMP file that can be read: nothing is drawn where it is needed [skin.no-bitmap]");
    dir.Write(push, test::BmpFile(3, 10));
    expect("error: is 3 pixels wide, too few for 5 states [skin.states]");
    dir.Write(push, test::BmpFile(102, 10));
    expect(
        "warning: is 102 pixels wide, which 5 states don't divide: the last 2 belong to none [skin.states]");
    dir.Write(push, test::BmpFile(50, 20));
    SetIni("[Button]\nPushButton_Left=6\nPushButton_Right=4\n");
    expect(
        "warning: is 10 pixels long in one state, and PushButton_Left and PushButton_Right take 6 and 4 of "
        "them: there is no middle to repeat [skin.ends]");
    SetIni("[Button]\nPushButton_Right=12\n");
    EXPECT_THAT(Check(), ElementsAre(HasSubstr(" take 0 and 12 of them")));
    SetIni("[Button]\nPushButton_Left=12\n");
    EXPECT_THAT(Check(), ElementsAre(HasSubstr(" take 12 and 0 of them")));
    SetIni("[Button]\nPushButton_Left=-3\nPushButton_Right=14\n");
    EXPECT_THAT(Check(), ElementsAre(HasSubstr("skin.negative")));
    SetIni("[Border]\nLeft_Top_Height=30\nLeft_Bottom_Height=20\n");
    dir.Write("s/Common/Window/Frame_Left.bmp", test::BmpFile(20, 40));
    EXPECT_THAT(Check(), ElementsAre(HasSubstr("is 40 pixels long in one state, and Left_Top_Height")));
    test::Bmp deep = test::ToBmp({"RRRRR"}, 16);
    dir.Write(push, deep.File());
    SetIni("");
    expect("warning: has 16 bits a pixel, which round colours: a transparent colour may not be found "
           "[skin.depth]");
    dir.Write(push, test::BmpFile(50, 10));
    dir.Write("s/Common/Button/pushbutton.bmp", test::BmpFile(50, 10));
    EXPECT_THAT(Check(), ElementsAre(testing::MatchesRegex(
                             "Common/Button/.*: warning: differs .* by case alone: .*")));
}

TEST_F(Skin, FindsStrangersAndIconsAndPictures)
{
    dir.Write("s/Common/Window/Frame_Titel.bmp", "");
    dir.Write("s/notes.txt", "");
    dir.Write("s/Common/IMList/Normal.ico", "no icon");
    dir.Write("s/Common/Others/FileSend.png", "no picture");
    EXPECT_THAT(
        Check(),
        ElementsAre("Common/IMList/Normal.ico: error: is no icon: nothing is drawn where it is needed "
                    "[skin.no-icon]",
                    "Common/Others/FileSend.png: error: is no picture: nothing is drawn where it is needed "
                    "[skin.no-picture]",
                    "Common/Window/Frame_Titel.bmp: note: nothing reads this file; did you mean "
                    "\"Common\\Window\\Frame_Title.bmp\"? [skin.unknown-file]",
                    "notes.txt: note: nothing reads this file [skin.unknown-file]"));
}

// Whatever lies there: findings and an exit code, and nothing written.
TEST_F(Skin, AnyTreeEnds)
{
    std::filesystem::create_directory_symlink(dir.Path("s"), dir.Path("s/loop"));
    std::filesystem::create_directory(dir.Path("s/Common/Button/x"));
    mkfifo(dir.Path("s/Common/pipe").c_str(), 0600);
    std::filesystem::remove(dir.Path("s/Common/Button/CheckBox.bmp"));
    mkfifo(dir.Path("s/Common/Button/CheckBox.bmp").c_str(), 0600);
    std::string junk;
    for (int n = 0; n < 20'000; ++n)
        junk += static_cast<char>(n * 7919 >> 3);
    dir.Write("s/Skin.ini", junk);
    dir.Write("s/\x1B[31m\xFF\"\\", "");
    const auto checked = test::Kx(dir, "skin check s");
    EXPECT_EQ(checked.nCode, 1);
    EXPECT_THAT(checked.lines, testing::Each(testing::Not(HasSubstr("loop/"))));
    const auto json = test::Kx(dir, "skin check s --json");
    EXPECT_EQ(json.nCode, 1);
    EXPECT_THAT(json.last, testing::StartsWith("{\"findings\":[{\"file\":"));
    EXPECT_TRUE(std::none_of(json.last.begin(), json.last.end(), [](char ch) { return ch > 0 && ch < ' '; }));
    for (int n = 0; n < 10'001; ++n)
        dir.Write("s/many/" + std::to_string(n), "");
    EXPECT_THAT(test::Kx(dir, "skin check s").lines,
                testing::Contains(HasSubstr("has more than 10000 entries: the others weren't looked at "
                                            "[skin.too-much]")));
    std::filesystem::remove_all(dir.Path("s/many"));
    EXPECT_EQ(test::Kx(dir, "skin preview s -o out.png").nCode, 0);
    std::filesystem::resize_file(dir.Path("s/Skin.ini"), 1 << 30); // sparse
    std::filesystem::resize_file(dir.Path("s/Common/Button/PushButton.bmp"), 1 << 30);
    EXPECT_EQ(test::Kx(dir, "skin check s").nCode, 1);
    std::filesystem::remove(dir.Path("s/Skin.ini"));
    mkfifo(dir.Path("s/Skin.ini").c_str(), 0600);
    EXPECT_EQ(test::Kx(dir, "skin check s").nCode, 1);
    std::filesystem::remove(dir.Path("s/Skin.ini"));
    std::filesystem::create_symlink("/dev/zero", dir.Path("s/Skin.ini"));
    EXPECT_THAT(test::Kx(dir, "skin check s").lines,
                testing::Contains(HasSubstr("Skin.ini: error: can't be read")));
    for (const char* pszCommand : {"check none", "check", "nothing s", "watch s"}) // the last has no display
        EXPECT_EQ(test::Kx(dir, std::string("skin ") + pszCommand).nCode, 2) << pszCommand;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 2);
}

TEST_F(Skin, ASheetShowsEveryState)
{
    EXPECT_EQ(test::Kx(dir, "skin preview s -o one.png").nCode, 0);
    const std::string png = dir.Read("one.png");
    EXPECT_TRUE(png.starts_with("\x89PNG"));
    std::filesystem::remove(dir.Path("s/Common/Button/CheckBox.bmp"));
    EXPECT_EQ(test::Kx(dir, "skin preview s -o two.png").nCode, 0);
    EXPECT_NE(dir.Read("two.png"), png);
    EXPECT_EQ(test::Kx(dir, "skin preview s -o none/two.png").nCode, 2);
}

} // namespace

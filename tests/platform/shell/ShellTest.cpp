#include "include/platform/Shell.h"
#include "include/platform/Error.h"
#include "tests/support/Test.h"

namespace fs = std::filesystem;

namespace {

constexpr UINT kTexts = SHGFI_DISPLAYNAME | SHGFI_TYPENAME;
constexpr char kPng[] = "\x89PNG\r\n\x1a\n";
constexpr char kUnknownIcon[] = "application-octet-stream application-x-generic";

using Shown = std::array<std::string, 3>;
constexpr std::size_t Name = 0, Type = 1; // the third is the icon

const _IMAGELIST* Ask(const char* pszPath, SHFILEINFOA& info, UINT nFlags)
{
    return reinterpret_cast<const _IMAGELIST*>(SHGetFileInfoA(pszPath, 0, &info, sizeof(info), nFlags));
}

Shown Show(const char* pszPath)
{
    SHFILEINFOA info{};
    const auto* list = Ask(pszPath, info, kTexts | SHGFI_SYSICONINDEX);
    return {info.szDisplayName, info.szTypeName, ImageList_GetIconName(list, info.iIcon)};
}

class Shell : public testing::Test
{
protected:
    Shell() { SetLanguage("en"); }
    ~Shell() override
    {
        for (const char letter : mounted)
            KXHost::UnmountDrive(letter);
    }

    static void SetLanguage(const char* language) { setenv("LANGUAGE", language, 1); }
    void Mount(char letter, UINT type, const std::string& label, const std::string& root)
    {
        ASSERT_TRUE(KXHost::MountDrive(letter, {root, type, label, "", 0}));
        mounted.push_back(letter);
    }

    test::TempDir dir;
    std::vector<char> mounted;
};

TEST_F(Shell, TellsEntriesByNameThenByContent)
{
    dir.MakeDir("folder.png");
    dir.Write("empty", "");
    dir.Write("empty.txt", "");
    fs::create_symlink("nowhere", dir.Path("dangling"));
    fs::create_symlink("folder.png", dir.Path("link.txt"));
    ASSERT_EQ(mkfifo(dir.Path("pipe").c_str(), 0600), 0);
    for (const char* name : {"picture", "picture.zzz"})
        dir.Write(name, kPng);
    for (const char* name : {"Photo.PNG", "noise.txt", "noise.dat", "noise", ".noise", "noise."})
        dir.Write(name, std::string(8, '\0'));
    dir.Write("anim.gif", "GIF89a");
    dir.Write("Skin.ini", "[Common]\r\nName=x\r\n");

    const std::string text = "plain text document", textIcon = "text-plain text-x-generic";
    const std::string pngIcon = "image-png image-x-generic";
    const Shown expected[] = {
        {"folder.png", "folder", "folder"},
        {"empty", "empty document", "application-x-zerosize application-x-generic"},
        {"empty.txt", text, textIcon},
        {"dangling", "symbolic link", "inode-symlink inode-x-generic"},
        {"link.txt", "folder", "folder"},
        {"pipe", "pipe", "inode-fifo inode-x-generic"},
        {"Photo.PNG", "PNG image", pngIcon},
        {"picture", "PNG image", pngIcon},
        {"picture.zzz", "PNG image", pngIcon},
        {"anim.gif", "GIF image", "image-gif image-x-generic"},
        {"noise.txt", text, textIcon},
        {"Skin.ini", text, textIcon},
        {"noise.dat", "DAT File", kUnknownIcon},
        {"noise", "File", kUnknownIcon},
        {".noise", "File", kUnknownIcon},
        {"noise.", "File", kUnknownIcon},
    };
    for (const auto& shown : expected)
        EXPECT_EQ(Show(dir.Win(shown[Name])), shown);
    EXPECT_EQ(Show(dir.Win("folder.png\\"))[Name], "folder.png");
    EXPECT_EQ(Show(dir.Win("PHOTO.png"))[Name], "Photo.PNG"); // as it is on the disk
}

TEST_F(Shell, FillsWhatIsAskedAndNoMore)
{
    dir.Write("a.gif", "");
    const CString strFile = dir.Win("a.gif");
    SHFILEINFOA info;
    const auto reset = [&] { std::memset(&info, 'z', sizeof(info)); };
    const auto untouched = [&](const auto& field) { return reinterpret_cast<const char*>(&field)[0] == 'z'; };

    reset();
    EXPECT_NE(Ask(strFile, info, SHGFI_TYPENAME), nullptr);
    EXPECT_STREQ(info.szTypeName, "GIF image");
    EXPECT_TRUE(untouched(info.szDisplayName));
    EXPECT_TRUE(untouched(info.iIcon));
    EXPECT_TRUE(untouched(info.hIcon));
    reset();
    EXPECT_NE(Ask(strFile, info, SHGFI_SYSICONINDEX), nullptr);
    EXPECT_TRUE(untouched(info.szDisplayName));
    EXPECT_TRUE(untouched(info.szTypeName));
    EXPECT_GT(info.iIcon, 0);

    const std::string tooLong = "C:\\" + std::string(257, 'x');
    const CString strNone = dir.Win("none.gif");
    const CString strTrailing = strFile + "\\"; // a file is no directory
    for (const char* path : {strNone.GetString(), strTrailing.GetString(), "", tooLong.c_str(), "Q:\\",
                             static_cast<const char*>(nullptr)}) {
        reset();
        EXPECT_EQ(Ask(path, info, kTexts | SHGFI_SYSICONINDEX), nullptr);
        EXPECT_STREQ(info.szDisplayName, "");
        EXPECT_STREQ(info.szTypeName, "");
        EXPECT_EQ(info.iIcon, 0);
        EXPECT_TRUE(untouched(info.dwAttributes));
        EXPECT_NE(GetLastError(), ERROR_SUCCESS);
    }
    EXPECT_EQ(SHGetFileInfoA(strFile, 0, nullptr, sizeof(info), kTexts), 0u);
    reset();
    EXPECT_EQ(SHGetFileInfoA(strFile, 0, &info, sizeof(info) - 1, kTexts), 0u);
    EXPECT_TRUE(untouched(info.szDisplayName));
}

TEST_F(Shell, DrivesHaveLabelLetterAndKind)
{
    Mount('Q', 5, "", "");
    Mount('R', 2, "STICK", dir.Path());
    Mount('S', 4, "", dir.Path());
    Mount('C', 3, "", "/");
    EXPECT_EQ(Show("Q:\\"), (Shown{"CD Drive (Q:)", "CD Drive", "drive-optical media-optical"}));
    EXPECT_EQ(Show("r:/"), (Shown{"STICK (R:)", "Removable Disk", "drive-removable-media"}));
    EXPECT_EQ(Show("S:\\a\\.."),
              (Shown{"Network Drive (S:)", "Network Drive", "folder-remote network-server"}));
    EXPECT_EQ(Show("C:\\")[Type], "Local Disk");
    EXPECT_TRUE(Show("C:\\")[Name].ends_with(" (C:)"));
    EXPECT_EQ(Show(dir.Win())[Type], "folder"); // though it is also the root of another drive

    SetLanguage("zh_CN");
    EXPECT_EQ(Show("C:\\")[Type], "\xB1\xBE\xB5\xD8\xB4\xC5\xC5\xCC");
    SetLanguage("en_GB:zh_CN");
    EXPECT_EQ(Show("C:\\")[Type], "Local Disk");
}

TEST_F(Shell, TextsAreInTheCodePageAndCutAtALetter)
{
    std::string letters;
    while (letters.size() < 120)
        letters += "\xE4\xB8\xAD"; // a Chinese letter
    dir.Write("\xE4\xB8\xAD.gif", "");
    dir.Write("x." + letters, std::string(1, '\0'));
    EXPECT_EQ(Show(dir.Win("\xD6\xD0.gif"))[Name], "\xD6\xD0.gif");

    const test::CodePage utf8(CP_UTF8);
    EXPECT_EQ(Show(dir.Win("\xE4\xB8\xAD.gif"))[Name], "\xE4\xB8\xAD.gif");
    EXPECT_EQ(Show(dir.Win("x." + letters))[Type], letters.substr(0, 78)); // of the 79 bytes that fit
}

TEST_F(Shell, ImageListsShareTheirIndices)
{
    SHFILEINFOA large{}, small{};
    const auto* pLarge = Ask("C:\\", large, SHGFI_SYSICONINDEX);
    const auto* pSmall = Ask("C:\\", small, SHGFI_SYSICONINDEX | SHGFI_SMALLICON);
    ASSERT_TRUE(pSmall);
    EXPECT_NE(pLarge, pSmall);
    EXPECT_EQ(large.iIcon, small.iIcon);
    int cx = 0, cy = 0;
    for (const auto& [list, side] : {std::pair{pLarge, 32}, {pSmall, 16}}) {
        EXPECT_TRUE(ImageList_GetIconSize(list, &cx, &cy));
        EXPECT_EQ(cx, side);
        EXPECT_EQ(cy, side);
    }
    EXPECT_STREQ(ImageList_GetIconName(pSmall, 0), kUnknownIcon);

    const int count = ImageList_GetImageCount(pLarge);
    EXPECT_GT(count, large.iIcon);
    EXPECT_EQ(ImageList_GetImageCount(pSmall), count);
    Ask("C:\\", large, SHGFI_SYSICONINDEX);
    EXPECT_EQ(ImageList_GetImageCount(pLarge), count); // nothing new
    for (const int index : {-1, count})
        EXPECT_STREQ(ImageList_GetIconName(pLarge, index), "");
    EXPECT_STREQ(ImageList_GetIconName(nullptr, 0), "");
    EXPECT_EQ(ImageList_GetImageCount(nullptr), 0);
    EXPECT_EQ(ImageList_GetIconSize(nullptr, &cx, &cy), 0);
    EXPECT_EQ(ImageList_GetIconSize(pLarge, nullptr, &cy), 0);
}

TEST_F(Shell, ThreadsAgree)
{
    std::vector<std::string> names{"a.png", "b.gif", "c.txt", "d.bmp", "e.mp3", "f.zip", "g", "h.xml"};
    for (const auto& name : names)
        dir.Write(name, "text");
    std::vector<std::vector<Shown>> seen(4);
    test::RunThreads(4, [&](int t) {
        for (const auto& name : names)
            seen[static_cast<std::size_t>(t)].push_back(Show(dir.Win(name)));
    });
    for (const auto& mine : seen)
        EXPECT_EQ(mine, seen[0]);
}

TEST_F(Shell, SpeaksTheUsersLanguageAndNeedsNoDatabase)
{
    dir.Write("a.png", kPng);
    dir.Write("text", "plain");
    const std::string root = dir.Win().GetString();
    const auto ask = [&](std::vector<std::string> env) {
        test::Child child("ShellChild", {root, root + "\\a.png", root + "\\text"}, std::move(env), true);
        EXPECT_EQ(child.Wait(), 0);
        return child.ErrorText();
    };
    const std::string folder = fs::path(dir.Path()).filename();
    EXPECT_EQ(ask({"LANGUAGE=zh_CN"}),
              folder + "|\xCE\xC4\xBC\xFE\xBC\xD0|folder\n" // "folder" in GBK
                       "a.png|PNG \xCD\xBC\xCF\xF1|image-png image-x-generic\n"
                       "text|\xB4\xBF\xCE\xC4\xB1\xBE\xCE\xC4\xB5\xB5|text-plain text-x-generic\n");
    const std::string lines =
        "|Folder|folder\na.png|PNG File|application-octet-stream application-x-generic\n"
        "text|File|text-plain text-x-generic\n";
    EXPECT_EQ(ask({"LANGUAGE=en", "XDG_DATA_DIRS=/nonexistent"}), folder + lines);
}

} // namespace

#include "KXFileSystem.h"
#include "tests/support/Test.h"

namespace fs = std::filesystem;
using testing::ElementsAre;
using Texts = std::vector<std::string>;

namespace {

// The entries that an enumeration delivered; its address is the user value.
struct Delivered
{
    Texts names;
    Texts dirs;
    int result = 0;

    static int Take(tagKXFileInfo* info, long self)
    {
        auto& mine = *reinterpret_cast<Delivered*>(self);
        mine.names.emplace_back(info->FindData.cFileName);
        mine.dirs.emplace_back(info->szPath);
        return 0; // which stops nothing
    }
};

Delivered Walk(int (*walk)(CString, KXEnumFileProc, long), const CString& strDir)
{
    Delivered delivered;
    delivered.result = walk(strDir, Delivered::Take, reinterpret_cast<long>(&delivered));
    return delivered;
}
Delivered Files(const CString& strDir)
{
    return Walk(CKXFileSystem::EnumFiles, strDir);
}
Delivered Dirs(const CString& strDir)
{
    return Walk(CKXFileSystem::EnumDirs, strDir);
}

struct FileSystemQuery : testing::Test
{
    test::NoLeak noLeak; // every search is closed
    test::TempDir dir;
};

TEST_F(FileSystemQuery, FindsFilesAndEntries)
{
    dir.MakeDir("a1");
    dir.MakeDir("d1");
    dir.MakeDir("d2");
    dir.Write("a2", "12345");
    const std::tuple<const char*, int, bool> expected[] = {
        {"a2", 1, true},  {"a1", 0, true},    {"a*", 1, true}, {"d*", 0, true},    {"*", 1, true},
        {"z*", 0, false}, {"none", 0, false}, {"a?", 1, true}, {"a1\\*", 0, true}, {"none\\a", 0, false},
    };
    for (const auto& [path, file, entry] : expected) {
        EXPECT_EQ(CKXFileSystem::FileExists(dir.Win(path)), file) << path;
        EXPECT_EQ(CKXFileSystem::FindFileInfo(dir.Win(path), nullptr) != 0, entry) << path;
    }
    EXPECT_EQ(CKXFileSystem::FileExists(""), 0);

    tagKXFileInfo info;
    std::memset(&info, 'z', sizeof(info));
    EXPECT_EQ(CKXFileSystem::FindFileInfo(dir.Win("none"), &info), 0);
    EXPECT_EQ(info.FindData.cFileName[0], 'z'); // as it was
    EXPECT_NE(CKXFileSystem::FindFileInfo(dir.Win("A2"), &info), 0);
    EXPECT_STREQ(info.FindData.cFileName, "a2");
    EXPECT_EQ(info.FindData.nFileSizeLow, 5u);
    EXPECT_NE(CKXFileSystem::FindFileInfo(dir.Win("d*"), &info), 0);
    EXPECT_TRUE(info.FindData.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

TEST_F(FileSystemQuery, EnumeratesOneDirectory)
{
    for (const char* name : {"data", ".cache", "..x", "Zoo"})
        dir.MakeDir(name);
    for (const char* name : {"b.txt", ".hidden", "data/below"})
        dir.Write(name, "");
    fs::create_symlink("data", dir.Path("link"));
    fs::create_symlink("nowhere", dir.Path("dangling"));
    const std::string path = (dir.Win() + "\\").GetString();

    for (const char* strEnd : {"", "\\"}) {
        const auto files = Files(dir.Win() + strEnd);
        EXPECT_NE(files.result, 0);
        EXPECT_THAT(files.names, ElementsAre(".hidden", "b.txt", "dangling"));
        EXPECT_THAT(files.dirs, testing::Each(path));
        const auto dirs = Dirs(dir.Win() + strEnd);
        EXPECT_NE(dirs.result, 0);
        EXPECT_THAT(dirs.names, ElementsAre("data", "link", "Zoo"));
        EXPECT_THAT(dirs.dirs, testing::Each(path));
    }
    EXPECT_NE(CKXFileSystem::EnumFiles(dir.Win(), nullptr, 0), 0);
}

TEST_F(FileSystemQuery, AnEmptyDirectoryIsSearchedAndNoneIsNot)
{
    dir.MakeDir("empty");
    dir.Write("file", "");
    for (auto* walk : {CKXFileSystem::EnumFiles, CKXFileSystem::EnumDirs}) {
        EXPECT_NE(Walk(walk, dir.Win("empty")).result, 0);
        EXPECT_THAT(Walk(walk, dir.Win("empty")).names, testing::IsEmpty());
        for (const char* path : {"none", "file"})
            EXPECT_EQ(Walk(walk, dir.Win(path)).result, 0) << path;
        EXPECT_EQ(Walk(walk, CString('x', 5000)).result, 0);
    }
    ASSERT_TRUE(KXHost::MountDrive('C', {dir.Path(), DRIVE_FIXED, "", "", 0}));
    EXPECT_THAT(Files("").names, ElementsAre("file")); // the root of the current drive
    EXPECT_THAT(Files("").dirs, ElementsAre("\\"));
    KXHost::UnmountDrive('C');
}

TEST_F(FileSystemQuery, LettersThatEndInABackslashByte)
{
    const std::string letter = "\x95\x5C";
    const std::string path = KXHost::ToSystemPath(dir.Win(letter));
    fs::create_directory(path);
    std::ofstream(path + "/a").put('x');
    EXPECT_THAT(Files(dir.Win(letter)).names, ElementsAre("a"));
    EXPECT_THAT(Files(dir.Win(letter)).dirs, ElementsAre((dir.Win(letter) + "\\").GetString()));
}

TEST_F(FileSystemQuery, PathsUpToTheLimit)
{
    // A directory of 257 bytes with its backslash leaves room for the "*" and a name of one byte.
    std::string path = dir.Win().GetString();
    while (path.size() < 256)
        path += "\\" + std::string(std::min<std::size_t>(100, 255 - path.size()), 'd');
    ASSERT_EQ(path.size(), 256u);
    fs::create_directories(KXHost::ToSystemPath(path.c_str()));
    std::ofstream(KXHost::ToSystemPath((path + "\\f").c_str())).put('x');
    EXPECT_THAT(Files(CString(path.c_str())).names, ElementsAre("f"));
    for (const unsigned more : {1u, 2u, 3u, 4u, 300u})
        EXPECT_EQ(Files(CString((path + std::string(more, 'x')).c_str())).result, 0) << more;
}

TEST_F(FileSystemQuery, EnumDisksDeliversThreeKinds)
{
    const auto mount = [&](char letter, UINT type, const char* label, bool medium) {
        ASSERT_TRUE(KXHost::MountDrive(letter, {medium ? dir.Path() : "", type, label, "vfat", 0x1234ABCD}));
    };
    mount('A', DRIVE_REMOVABLE, "FLOPPY", true);
    mount('Q', DRIVE_REMOVABLE, "STICK", true);
    mount('R', DRIVE_CDROM, "DISC", false);
    mount('S', DRIVE_REMOTE, "NET", true);
    mount('T', DRIVE_RAMDISK, "RAM", true);
    mount('Z', DRIVE_FIXED, "LAST", true);

    std::vector<tagKXDiskInfo> disks;
    const auto take = [](tagKXDiskInfo* info, long list) {
        reinterpret_cast<std::vector<tagKXDiskInfo>*>(list)->push_back(*info);
        return 0;
    };
    EXPECT_EQ(CKXFileSystem::EnumDisks(take, reinterpret_cast<long>(&disks)), 1);
    EXPECT_EQ(CKXFileSystem::EnumDisks(nullptr, 0), 1);
    for (const char letter : {'A', 'Q', 'R', 'S', 'T', 'Z'})
        KXHost::UnmountDrive(letter);

    std::string letters;
    for (const auto& disk : disks)
        letters += disk.cDriveLetter;
    EXPECT_EQ(letters, "CQRZ");
    ASSERT_EQ(disks.size(), 4u);
    const auto& stick = disks[1];
    EXPECT_STREQ(stick.szDisplayName, "STICK (Q:)");
    EXPECT_STREQ(stick.szVolumeName, "STICK");
    EXPECT_STREQ(stick.szFileSystem, "vfat");
    EXPECT_EQ(stick.dwSerialNumber, 0x1234ABCDu);
    EXPECT_EQ(stick.nDriveType, DRIVE_REMOVABLE);
    EXPECT_STRNE(stick.szTypeName, disks[0].szTypeName);
    const auto& empty = disks[2];
    EXPECT_STREQ(empty.szVolumeName, "");
    EXPECT_STREQ(empty.szFileSystem, "");
    EXPECT_EQ(empty.dwSerialNumber, 0u);
    EXPECT_THAT(empty.szDisplayName, testing::EndsWith(" (R:)"));
}

TEST_F(FileSystemQuery, ShellsAnswers)
{
    dir.Write("a.png", "");
    const CString strFile = dir.Win("a.png");
    const auto* large = CKXFileSystem::GetSystemImageList(2);
    const auto* small = CKXFileSystem::GetSystemImageList(0);
    int cxLarge = 0, cxSmall = 0, cy = 0;
    EXPECT_TRUE(ImageList_GetIconSize(large, &cxLarge, &cy));
    EXPECT_TRUE(ImageList_GetIconSize(small, &cxSmall, &cy));
    EXPECT_GT(cxLarge, cxSmall);

    SHFILEINFOA info;
    std::memset(&info, 'z', sizeof(info));
    CKXFileSystem::GetFileImage(strFile, info, 1);
    EXPECT_THAT(ImageList_GetIconName(large, info.iIcon), testing::StartsWith("image-png"));
    EXPECT_EQ(info.szTypeName[0], 'z');
    EXPECT_EQ(CKXFileSystem::GetFileImage(strFile, 0), info.iIcon);

    CString name("old"), type("old");
    CKXFileSystem::GetTypeDesc(strFile, name, type);
    EXPECT_STREQ(name, "a.png");
    EXPECT_FALSE(type.IsEmpty());
    CKXFileSystem::GetTypeDesc(dir.Win("none"), name, type);
    EXPECT_TRUE(name.IsEmpty());
    EXPECT_TRUE(type.IsEmpty());
    EXPECT_EQ(CKXFileSystem::GetFileImage(dir.Win("none"), 1), 0);
}

} // namespace

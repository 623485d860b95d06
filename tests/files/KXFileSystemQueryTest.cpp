#include "KXFileSystem.h"
#include "tests/support/Test.h"

namespace fs = std::filesystem;
using testing::ElementsAre;
using Texts = std::vector<std::string>;

namespace {

// The paths that an enumeration delivered, or that it failed.
Texts Walk(int (*walk)(CString, KXEnumFileProc, long), const CString& strDir)
{
    Texts paths;
    const auto take = [](tagKXFileInfo* info, long list) {
        reinterpret_cast<Texts*>(list)->push_back(std::string(info->szPath) + info->FindData.cFileName);
        return 0; // which stops nothing
    };
    return walk(strDir, take, reinterpret_cast<long>(&paths)) ? paths : Texts{"failed"};
}

// Every search is closed.
struct FileSystemQuery : test::LeakTest
{
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
        EXPECT_THAT(Walk(CKXFileSystem::EnumFiles, dir.Win() + strEnd),
                    ElementsAre(path + ".hidden", path + "b.txt", path + "dangling"));
        EXPECT_THAT(Walk(CKXFileSystem::EnumDirs, dir.Win() + strEnd),
                    ElementsAre(path + "data", path + "link", path + "Zoo"));
    }
    EXPECT_NE(CKXFileSystem::EnumFiles(dir.Win(), nullptr, 0), 0);
}

TEST_F(FileSystemQuery, AnEmptyDirectoryIsSearchedAndNoneIsNot)
{
    dir.MakeDir("empty");
    dir.Write("file", "");
    for (auto* walk : {CKXFileSystem::EnumFiles, CKXFileSystem::EnumDirs}) {
        EXPECT_THAT(Walk(walk, dir.Win("empty")), testing::IsEmpty());
        for (const CString& strNone : {dir.Win("none"), dir.Win("file"), CString('x', 5000)})
            EXPECT_THAT(Walk(walk, strNone), ElementsAre("failed")) << strNone;
    }
    ASSERT_TRUE(KXHost::MountDrive('C', {dir.Path(), DRIVE_FIXED, "", "", 0}));
    EXPECT_THAT(Walk(CKXFileSystem::EnumFiles, ""), ElementsAre("\\file")); // the current drive's root
    KXHost::UnmountDrive('C');
}

TEST_F(FileSystemQuery, PathsUpToTheLimit)
{
    // A directory of 257 bytes with its backslash leaves room for the "*" and a name of one byte.
    std::string path = dir.Win().GetString();
    while (path.size() < 256)
        path += "\\" + std::string(std::min<std::size_t>(100, 255 - path.size()), 'd');
    fs::create_directories(KXHost::ToSystemPath(path.c_str()));
    std::ofstream(KXHost::ToSystemPath((path + "\\f").c_str())).put('x');
    EXPECT_THAT(Walk(CKXFileSystem::EnumFiles, path.c_str()), ElementsAre(path + "\\f"));
    for (const unsigned more : {1u, 2u, 3u, 4u, 300u})
        EXPECT_THAT(Walk(CKXFileSystem::EnumFiles, (path + std::string(more, 'x')).c_str()),
                    ElementsAre("failed"))
            << more;
}

TEST_F(FileSystemQuery, EnumDisksDeliversThreeKinds)
{
    const auto mount = [&](char letter, UINT type, const char* label, bool medium) {
        ASSERT_TRUE(KXHost::MountDrive(letter, {medium ? dir.Path() : "", type, label, "vfat", 0x1234ABCD}));
    };
    mount('A', DRIVE_REMOVABLE, "FLOPPY", true);
    mount('C', DRIVE_FIXED, "FIRST", true);
    mount('Q', DRIVE_REMOVABLE, "STICK", true);
    mount('R', DRIVE_CDROM, "DISC", false);
    mount('S', DRIVE_REMOTE, "NET", true);
    mount('T', DRIVE_RAMDISK, "RAM", true);
    mount('Z', DRIVE_FIXED, "LAST", true);
    setenv("LANGUAGE", "en", 1);

    std::ostringstream disks;
    const auto take = [](tagKXDiskInfo* info, long list) {
        *reinterpret_cast<std::ostringstream*>(list)
            << info->cDriveLetter << ": " << info->szDisplayName << ", " << info->szTypeName << ", "
            << info->szVolumeName << ", " << info->szFileSystem << ", " << std::hex << info->dwSerialNumber
            << ", " << info->nDriveType << "\n";
        return 0;
    };
    EXPECT_EQ(CKXFileSystem::EnumDisks(take, reinterpret_cast<long>(&disks)), 1);
    EXPECT_EQ(CKXFileSystem::EnumDisks(nullptr, 0), 1);
    for (const char letter : {'A', 'C', 'Q', 'R', 'S', 'T', 'Z'})
        KXHost::UnmountDrive(letter);
    EXPECT_EQ(disks.str(), "C: FIRST (C:), Local Disk, FIRST, vfat, 1234abcd, 3\n"
                           "Q: STICK (Q:), Removable Disk, STICK, vfat, 1234abcd, 2\n"
                           "R: CD Drive (R:), CD Drive, , , 0, 5\n"
                           "Z: LAST (Z:), Local Disk, LAST, vfat, 1234abcd, 3\n");
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

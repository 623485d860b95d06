#include "KXFileSystem.h"
#include "platform/Module.h"
#include "tests/support/Test.h"

using testing::ElementsAre;
using Texts = std::vector<std::string>;

namespace {

// Directory, file, name, extension and result.
Texts SplitFile(const char* pszPath)
{
    CString dir("old"), file("old"), name("old"), ext("old");
    const int nResult = CKXFileSystem::ParsePathFile(pszPath, &dir, &file, &name, &ext);
    return {dir.GetString(), file.GetString(), name.GetString(), ext.GetString(), std::to_string(nResult)};
}

// Root, directories and result.
std::vector<CString> SplitDirs(const char* pszPath)
{
    CString root("old");
    std::vector<CString> parts{"old"};
    const int nResult = CKXFileSystem::ParsePath(pszPath, root, parts);
    parts.insert(parts.begin(), root);
    parts.push_back(nResult ? "1" : "0");
    return parts;
}

TEST(FileSystemPath, ParsePathFileTakesThePointAndTheBackslashEachByItself)
{
    EXPECT_THAT(SplitFile("C:\\dir\\name.tar.gz"),
                ElementsAre("C:\\dir\\", "name.tar.gz", "name.tar", "gz", "1"));
    EXPECT_THAT(SplitFile("name"), ElementsAre("", "name", "name", "", "0"));
    EXPECT_THAT(SplitFile("C:\\dir\\"), ElementsAre("C:\\dir\\", "", "", "", "0"));
    EXPECT_THAT(SplitFile(".ini"), ElementsAre("", ".ini", "", "ini", "1"));
    EXPECT_THAT(SplitFile("C:\\a.b\\file"), ElementsAre("C:\\a.b\\", "file", "", "b\\file", "1"));
    EXPECT_THAT(SplitFile("C:/a/b.c"), ElementsAre("", "C:/a/b.c", "C:/a/b", "c", "1")); // a slash is no mark
    // A letter whose second byte is a backslash.
    EXPECT_THAT(SplitFile("C:\\\x95\x5C.c"), ElementsAre("C:\\", "\x95\x5C.c", "\x95\x5C", "c", "1"));

    // It takes null and its own argument.
    EXPECT_EQ(CKXFileSystem::ParsePathFile("a.b", nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(CKXFileSystem::ParsePathFile("a", nullptr, nullptr, nullptr, nullptr), 0);
    CString path("C:\\dir\\a.b"), ext;
    EXPECT_EQ(CKXFileSystem::ParsePathFile(path, &path, nullptr, nullptr, &ext), 1);
    EXPECT_STREQ(path, "C:\\dir\\");
    EXPECT_STREQ(ext, "b");
}

TEST(FileSystemPath, ParsePathTakesWhatStandsBeforeBackslashes)
{
    EXPECT_THAT(SplitDirs("C:\\a\\b\\"), ElementsAre("C:", "a", "b", "1"));
    EXPECT_THAT(SplitDirs("C:\\a\\b"), ElementsAre("C:", "a", "1"));
    EXPECT_THAT(SplitDirs("C:\\"), ElementsAre("C:", "1"));
    EXPECT_THAT(SplitDirs("C:"), ElementsAre("", "0"));
    EXPECT_THAT(SplitDirs("\\"), ElementsAre("", "0"));
    EXPECT_THAT(SplitDirs("\\a\\"), ElementsAre("", "\\a", "1"));
    EXPECT_THAT(SplitDirs("a\\b\\"), ElementsAre("", "a", "b", "1"));
    EXPECT_THAT(SplitDirs("C:\\a\\\\b\\"), ElementsAre("C:", "a", "\\b", "1"));
    EXPECT_THAT(SplitDirs("\\\\server\\x\\"), ElementsAre("", "\\", "server", "x", "1"));
    EXPECT_THAT(SplitDirs("C:\\a\\D:\\b\\"), ElementsAre("D:", "a", "b", "1")); // the last root stays
    EXPECT_THAT(SplitDirs("C:\\\x95\x5C\\b"), ElementsAre("C:", "\x95\x5C", "1"));

    CString both("C:\\a\\");
    std::vector<CString> dirs;
    EXPECT_EQ(CKXFileSystem::ParsePath(both, both, dirs), 1);
    EXPECT_STREQ(both, "C:");
    EXPECT_THAT(dirs, ElementsAre("a"));
}

TEST(FileSystemPath, TheObjectHoldsTheExecutablesPlace)
{
    const test::TempDir dir;
    dir.MakeDir("App");
    const std::string app = dir.Win("App").GetString();
    EXPECT_EQ(test::RunChild("FileSystemChild", {dir.Path("App/client.exe")}, {"KX_DEBUG=1"}),
              "CKXFileSystem construction!\n"
              "client.exe\n" +
                  app + "\\\n" + app + "\\\\data\n" + app + "\\\n" + app + "\nCKXFileSystem destroy!\n");
    // One that can't be named leaves the paths empty.
    const std::string deep = "/" + std::string(260, 'x') + "/client";
    const std::string here = KXHost::FromSystemPath(std::filesystem::current_path()).GetString();
    EXPECT_EQ(test::RunChild("FileSystemChild", {deep}), "\n\n\\data\n\n" + here + "\n");
}

TEST(FileSystemPath, SystemsDirectoriesAndModules)
{
    EXPECT_STREQ(CKXFileSystem::GetSystemPath(), "C:\\usr\\lib");
    EXPECT_STREQ(CKXFileSystem::GetWndowsPath(), "C:\\usr");
    const std::string bin = KXHost::FromSystemPath(std::filesystem::canonical(KX_TEST_BIN)).GetString();
    SetLastError(ERROR_NOT_ENOUGH_MEMORY); // an older call's
    EXPECT_EQ(CKXFileSystem::GetModulePath(nullptr).GetString(), bin + "\\");
    EXPECT_STREQ(CKXFileSystem::GetModulePath(reinterpret_cast<HINSTANCE>(0x1234)), "");
}

} // namespace

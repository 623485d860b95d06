#include "KXFileSystem.h"
#include "platform/CodePage.h"
#include "tests/support/Nobody.h"
#include "tests/support/Test.h"

#include <barrier>

namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

// Every search is closed.
struct FileSystemTrees : test::LeakTest
{
    test::TempDir dir;
};

// The calls back from CopyDir, the user value being this object's address; `last` makes it stop after a file.
struct Progress
{
    std::vector<std::string> calls;
    std::string last;
    CString strEnd; // the paths that the end is told with

    static int Take(const CString& src, const CString& dst, int bFile, int bResult, long self)
    {
        auto& mine = *reinterpret_cast<Progress*>(self);
        const auto name = [](const CString& path) {
            return std::string(path.Mid(path.ReverseFind('\\') + 1));
        };
        if (!bFile) mine.strEnd = src + ">" + dst;
        mine.calls.push_back((bFile ? name(src) + ">" + name(dst) : "end") + (bResult == 1 ? "+" : "-"));
        return bFile && name(src) == mine.last ? 0 : 1;
    }
    void Copy(CString src, CString dst)
    {
        CKXFileSystem::CopyDir(src, dst, Take, reinterpret_cast<long>(this));
    }
};

TEST_F(FileSystemTrees, CreatePathMakesWhatIsMissing)
{
    EXPECT_EQ(CKXFileSystem::CreatePath(dir.Win("a\\b\\file.txt")), 1);
    EXPECT_TRUE(fs::is_directory(dir.Path("a/b")));
    EXPECT_FALSE(dir.Exists("a/b/file.txt"));
    EXPECT_EQ(CKXFileSystem::CreatePath(dir.Win("a\\\\c\\")), 1); // "a" is there already
    EXPECT_TRUE(fs::is_directory(dir.Path("a/c")));
    EXPECT_EQ(CKXFileSystem::CreatePath("C:\\"), 1);
    EXPECT_EQ(CKXFileSystem::CreatePath("name.txt"), 0);
    EXPECT_EQ(CKXFileSystem::CreatePath(""), 0);

    dir.Write("file", "");
    EXPECT_EQ(CKXFileSystem::CreatePath(dir.Win("x\\..\\file\\y\\z\\")), 0);
    EXPECT_TRUE(dir.Exists("x")); // what came before the failure stays
    EXPECT_EQ(CKXFileSystem::CreatePath(dir.Win(std::string(300, 'n') + "\\")), 0);
}

TEST_F(FileSystemTrees, CreatePathSucceedsOnAllThreadsThatMakeTheSame)
{
    constexpr int kRounds = 200;
    std::barrier begin(2);
    test::RunThreads(2, [&](int) {
        for (int i = 0; i < kRounds; ++i) {
            begin.arrive_and_wait();
            EXPECT_EQ(CKXFileSystem::CreatePath(dir.Win("r" + std::to_string(i) + "\\a\\b\\c\\")), 1);
        }
    });
}

TEST_F(FileSystemTrees, DeleteFolderTakesAllOfATree)
{
    for (const char* name : {"t/a/b/c/f", "t/a/.hidden", "t/z", "keep/f"})
        dir.Write(name, "x");
    dir.MakeDir("t/empty");
    fs::create_directory_symlink(dir.Path("keep"), dir.Path("t/a/linked"));
    fs::create_directory_symlink(dir.Path("t"), dir.Path("t/a/loop"));
    fs::create_symlink(dir.Path("keep/f"), dir.Path("t/filelink"));
    fs::create_symlink("nowhere", dir.Path("t/dangling"));
    EXPECT_NE(CKXFileSystem::DeleteFolder(dir.Win("t")), 0);
    EXPECT_FALSE(dir.Exists("t"));
    EXPECT_EQ(dir.Read("keep/f"), "x"); // links went, not what they point at

    fs::create_directory_symlink(dir.Path("keep"), dir.Path("link"));
    EXPECT_NE(CKXFileSystem::DeleteFolder(dir.Win("link\\")), 0);
    EXPECT_FALSE(dir.Exists("link"));
    EXPECT_TRUE(dir.Exists("keep/f"));

    EXPECT_EQ(CKXFileSystem::DeleteFolder(dir.Win("none")), 0);
    EXPECT_EQ(CKXFileSystem::DeleteFolder(dir.Win("keep\\f")), 0);
    EXPECT_TRUE(dir.Exists("keep/f"));
}

TEST_F(FileSystemTrees, DeleteFolderLeavesPointedDirectoriesAndEndsAtTheFirstFailure)
{
    for (const char* name : {"t/.cache/f", "t/a/f", "t/f", "u/a/f", "u/b/read-only", "u/c/f"})
        dir.Write(name, "x");
    fs::permissions(dir.Path("u/b/read-only"), fs::perms::owner_read);
    for (const char* top : {"t", "u"})
        EXPECT_EQ(CKXFileSystem::DeleteFolder(dir.Win(top)), 0);
    for (const char* left : {"t/.cache/f", "u/b/read-only", "u/c/f"})
        EXPECT_TRUE(dir.Exists(left)) << left;
    for (const char* gone : {"t/a", "t/f", "u/a"})
        EXPECT_FALSE(dir.Exists(gone)) << gone;
}

// A user without rights does this where the tests run as root.
TEST_F(FileSystemTrees, DeleteFolderTakesAnEmptyOneThatMayNotBeRead)
{
    fs::permissions(dir.Path(), fs::perms::all);
    const test::Nobody nobody;
    EXPECT_EQ(mkdir(dir.Path("t").c_str(), 0), 0);
    EXPECT_NE(CKXFileSystem::DeleteFolder(dir.Win("t")), 0);
    EXPECT_FALSE(dir.Exists("t"));
}

TEST_F(FileSystemTrees, WithoutADriveAPathBeginsAtTheRootUnlessItIsEmpty)
{
    dir.Write("f", "x");
    dir.MakeDir("to");
    ASSERT_TRUE(KXHost::MountDrive('C', {dir.Path(), DRIVE_FIXED, "", "", 0}));
    EXPECT_EQ(CKXFileSystem::CreatePath("a\\b\\"), 1);
    EXPECT_EQ(CKXFileSystem::CreatePath("\\c\\d\\"), 1); // the first name is `\c`
    EXPECT_EQ(CKXFileSystem::DeleteFolder(""), 0);
    Progress progress;
    progress.Copy("", "C:\\to");
    progress.Copy("C:\\to", "");
    KXHost::UnmountDrive('C');
    for (const char* name : {"a/b", "c/d", "f"})
        EXPECT_TRUE(dir.Exists(name)) << name;
    EXPECT_FALSE(dir.Exists("to/f"));
    EXPECT_THAT(progress.calls, ElementsAre("end+", "end+"));
}

TEST_F(FileSystemTrees, CopyDirTellsOfTheTopFilesAlone)
{
    for (const char* name : {"s/a.txt", "s/b.txt", "s/sub/deep/f", "s/.cache/f"})
        dir.Write(name, name);
    dir.Write("d/b.txt", "old");
    dir.Write("d/a.txt", "old");
    fs::permissions(dir.Path("d/a.txt"), fs::perms::owner_read);
    dir.MakeDir("d/sub"); // there already
    fs::create_directory_symlink("..", dir.Path("s/sub/loop"));
    fs::create_directory_symlink("sub", dir.Path("s/toplink"));

    Progress progress;
    progress.Copy(dir.Win("s"), dir.Win("d"));
    EXPECT_THAT(progress.calls, ElementsAre("a.txt>a.txt-", "b.txt>b.txt+", "end+"));
    EXPECT_EQ(progress.strEnd, dir.Win("s") + "\\>" + dir.Win("d") + "\\");
    EXPECT_EQ(dir.Read("d/b.txt"), "s/b.txt");
    EXPECT_EQ(dir.Read("d/a.txt"), "old");
    EXPECT_EQ(dir.Read("d/sub/deep/f"), "s/sub/deep/f");
    EXPECT_FALSE(dir.Exists("d/.cache"));
    EXPECT_EQ(fs::read_symlink(dir.Path("d/sub/loop")), "..");
    EXPECT_EQ(fs::read_symlink(dir.Path("d/toplink")), "sub");
}

// The target could hold one of them only.
TEST_F(FileSystemTrees, CopyDirCopiesTheFirstOfNamesThatDifferInCase)
{
    const auto copy = [&](const std::string& from, int nFiles,
                          const std::vector<std::array<std::string, 2>>& pairs) {
        for (const auto& pair : pairs)
            for (const std::string& name : pair)
                dir.Write(from + name, name);
        const std::string to = "to" + from;
        dir.MakeDir(to);
        Progress progress;
        progress.Copy(dir.Win(from.substr(0, 1)), dir.Win(to.substr(0, 3)));
        EXPECT_EQ(std::ranges::count_if(progress.calls, [](const auto& call) { return call.ends_with('-'); }),
                  nFiles);
        for (const auto& [a, b] : pairs) {
            const bool bFirst = dir.Exists(to + a);
            EXPECT_EQ(dir.Read(to + (bFirst ? a : b)), bFirst ? a : b);
            EXPECT_NE(dir.Exists(to + b), bFirst);
        }
    };
    copy("s/", 1, {{"A", "a"}, {"B/f", "b/f"}});
    const test::CodePage scope(CP_UTF8);
    copy("t/", 2, {{"Я.txt", "я.txt"}, {"Ａ.txt", "ａ.txt"}, {"Ж/f", "ж/f"}});
}

TEST_F(FileSystemTrees, CopyDirStopsWhereTheCallbackSaysAndOnlyThere)
{
    for (const char* name : {"s/a", "s/b", "s/c/a"})
        dir.Write(name, "x");
    dir.MakeDir("d");
    dir.MakeDir("empty");
    Progress progress;
    progress.last = "a";
    progress.Copy(dir.Win("s"), dir.Win("d"));
    EXPECT_THAT(progress.calls, ElementsAre("a>a+"));
    EXPECT_TRUE(dir.Exists("d/a"));
    EXPECT_FALSE(dir.Exists("d/b"));
    EXPECT_FALSE(dir.Exists("d/c"));

    for (const char* source : {"empty", "none"}) {
        Progress end;
        end.Copy(dir.Win(source), dir.Win("d"));
        EXPECT_THAT(end.calls, ElementsAre("end+")) << source;
    }
}

TEST_F(FileSystemTrees, CopyDirAddsTheBackslashToItsArguments)
{
    dir.Write("s/f", "x");
    dir.MakeDir("d");
    for (const char* end : {"", "\\"}) {
        CString src = dir.Win("s") + end, dst = dir.Win("d") + end;
        CKXFileSystem::CopyDir(src, dst, nullptr, 0);
        EXPECT_EQ(src, dir.Win("s") + "\\");
        EXPECT_EQ(dst, dir.Win("d") + "\\");
    }
    EXPECT_TRUE(dir.Exists("d/f"));
    // A letter whose second byte is a backslash is no end.
    CString src("\x95\x5C"), dst("\x95\x5C\\");
    CKXFileSystem::CopyDir(src, dst, nullptr, 0);
    EXPECT_STREQ(src, "\x95\x5C\\");
    EXPECT_STREQ(dst, "\x95\x5C\\");
}

// Paths end at 259 bytes, and so does every walk.
TEST_F(FileSystemTrees, DeepTreesEnd)
{
    std::string deep = dir.Path("t");
    while (deep.size() < 600)
        deep += "/d";
    fs::create_directories(deep);
    dir.MakeDir("to");
    Progress().Copy(dir.Win("t"), dir.Win("to"));
    EXPECT_TRUE(dir.Exists("to/d/d/d"));
    EXPECT_EQ(CKXFileSystem::DeleteFolder(dir.Win("t")), 0);
    EXPECT_TRUE(fs::exists(deep));

    dir.Write("self/f", "x");
    dir.MakeDir("self/in");
    Progress().Copy(dir.Win("self"), dir.Win("self\\in"));
    EXPECT_TRUE(dir.Exists("self/in/f"));
}

} // namespace

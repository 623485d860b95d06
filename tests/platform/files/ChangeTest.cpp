#include "platform/UniqueFd.h"
#include "tests/platform/files/Mounted.h"

#include <sys/inotify.h>

namespace fs = std::filesystem;

namespace {

// The result of an operation: 0 for success, which is 1, else the last error.
DWORD Outcome(int bDone)
{
    return bDone ? static_cast<DWORD>(bDone - 1) : GetLastError();
}

std::size_t Entries(const std::string& directory)
{
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

void ReadOnly(const std::string& path)
{
    fs::permissions(path, fs::perms::owner_read | fs::perms::group_read);
}

using Copy = test::OnDrive;
using Delete = test::OnDrive;
using Directory = test::OnDrive;

} // namespace

TEST_F(Copy, PassesOnContentPermissionsAndTime)
{
    const std::string content(300'000, 'x');
    drive.Write("from", content);
    drive.Write("Old", "a longer text than nothing");
    drive.Write("empty", "");
    fs::permissions(drive.Path("from"), fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions(drive.Path("Old"), fs::perms{02664}); // a higher bit brings back none of the lower
    const timespec times[] = {{1'000'000'000, 5}, {1'100'000'000, 7}};
    utimensat(AT_FDCWD, drive.Path("from").c_str(), times, 0);
    for (const char* target : {"X:\\to", "X:\\OLD"})
        EXPECT_TRUE(CopyFileA("X:\\FROM", target, 0));
    for (const char* target : {"to", "Old"}) {
        struct stat info;
        ASSERT_EQ(stat(drive.Path(target).c_str(), &info), 0);
        EXPECT_EQ(drive.Read(target), content);
        EXPECT_EQ(info.st_mode & 0777, 0500u);
        EXPECT_EQ(info.st_mtim.tv_sec, 1'100'000'000);
        EXPECT_EQ(info.st_mtim.tv_nsec, 7);
    }
    EXPECT_TRUE(CopyFileA("X:\\empty", "X:\\new", 1));
    EXPECT_TRUE(CopyFileA("C:\\proc\\self\\status", "X:\\proc", 0)); // its size is told as 0
    EXPECT_TRUE(drive.Read("proc").starts_with("Name:"));
    EXPECT_EQ(Entries(drive.Path()), 6u);
}

TEST_F(Copy, FollowsLinksToFilesAndCopiesLinksToDirectories)
{
    drive.Write("file", "content");
    drive.Write("dir/target", "old");
    fs::create_symlink("file", drive.Path("in"));
    fs::create_symlink("dir/target", drive.Path("out"));
    fs::create_symlink("gone", drive.Path("dangling"));
    fs::create_directory_symlink("dir", drive.Path("linkdir"));
    EXPECT_TRUE(CopyFileA("X:\\in", "X:\\out", 0));
    EXPECT_TRUE(fs::is_symlink(drive.Path("out")));
    EXPECT_EQ(drive.Read("dir/target"), "content");
    EXPECT_TRUE(CopyFileA("X:\\in", "X:\\dangling", 0));
    EXPECT_TRUE(fs::is_symlink(drive.Path("dangling")));
    EXPECT_EQ(drive.Read("gone"), "content");
    fs::current_path("/proc"); // a new link is made beside the old one, not here
    for (const char* target : {"X:\\copy", "X:\\file"})
        EXPECT_EQ(CopyFileA("X:\\linkdir", target, 0), 1);
    EXPECT_EQ(fs::read_symlink(drive.Path("copy")), "dir");
    EXPECT_EQ(fs::read_symlink(drive.Path("file")), "dir");
    EXPECT_EQ(Outcome(CopyFileA("X:\\linkdir", "X:\\copy", 1)), ERROR_FILE_EXISTS);
    EXPECT_EQ(CopyFileA("X:\\linkdir", "X:\\second", 1), 1);
}

TEST_F(Copy, RefusalsLeaveBothFiles)
{
    for (const char* file : {"from", "to", "locked", "open", "dir/x"})
        drive.Write(file, file);
    ReadOnly(drive.Path("locked"));
    fs::create_hard_link(drive.Path("from"), drive.Path("hard"));
    fs::create_symlink("from", drive.Path("soft"));
    mkfifo(drive.Path("pipe").c_str(), 0600);
    fs::create_symlink("pipe", drive.Path("topipe"));
    const kx::UniqueFd opened(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)); // opening a device may do something
    ASSERT_NE(inotify_add_watch(opened.Get(), drive.Path("pipe").c_str(), IN_OPEN), -1);
    CFile writer;
    ASSERT_TRUE(writer.Open("X:\\open", CFile::modeWrite | CFile::shareDenyWrite));
    const std::size_t nEntries = Entries(drive.Path());
    const std::tuple<const char*, const char*, int, DWORD> facts[] = {
        {"X:\\none", "X:\\new", 0, ERROR_FILE_NOT_FOUND},
        {"X:\\none\\a", "X:\\new", 0, ERROR_PATH_NOT_FOUND},
        {"X:\\from", "X:\\none\\new", 0, ERROR_PATH_NOT_FOUND},
        {"X:\\from", "X:\\none\\new", 1, ERROR_PATH_NOT_FOUND},
        {"X:\\from", "X:\\from\\new", 0, ERROR_PATH_NOT_FOUND},
        {"X:\\from", "X:\\to", 1, ERROR_FILE_EXISTS},
        {"X:\\from", "X:\\LOCKED", 0, ERROR_ACCESS_DENIED},
        {"X:\\from", "X:\\open", 0, ERROR_SHARING_VIOLATION},
        {"X:\\from", "X:\\From", 0, ERROR_SHARING_VIOLATION},
        {"X:\\from", "X:\\hard", 0, ERROR_SHARING_VIOLATION},
        {"X:\\soft", "X:\\from", 0, ERROR_SHARING_VIOLATION},
        {"X:\\from", "X:\\dir", 0, ERROR_ACCESS_DENIED},
        {"X:\\from", "X:\\new\\", 0, ERROR_DIRECTORY},
        {"X:\\dir", "X:\\new", 0, ERROR_ACCESS_DENIED},
        {"X:\\pipe", "X:\\new", 0, ERROR_ACCESS_DENIED}, // and never waits for it
        {"X:\\topipe", "X:\\new", 0, ERROR_ACCESS_DENIED},
        {"X:\\from", "X:\\pipe", 0, ERROR_ACCESS_DENIED},
        {"C:\\dev\\zero", "X:\\new", 0, ERROR_ACCESS_DENIED}};
    for (const auto& [from, to, bFailIfExists, error] : facts)
        EXPECT_EQ(Outcome(CopyFileA(from, to, bFailIfExists)), error) << from << to;
    for (const char* file : {"from", "to", "locked", "open"})
        EXPECT_EQ(drive.Read(file), file);
    EXPECT_EQ(Entries(drive.Path()), nEntries);
    inotify_event event;
    EXPECT_EQ(read(opened.Get(), &event, sizeof event), -1);
}

TEST_F(Copy, FailureOnTheWayLeavesTheOldFileAndNothingElse)
{
    drive.Write("from", std::string(50'000, 'n'));
    drive.Write("old", "old");
    {
        const test::FileLimit limit(10'000);
        for (const char* target : {"X:\\old", "X:\\new"})
            EXPECT_FALSE(CopyFileA("X:\\from", target, 0));
    }
    EXPECT_EQ(drive.Read("old"), "old");
    EXPECT_EQ(Entries(drive.Path()), 2u);
}

// From memory, which is another file system, and within one.
TEST_F(Copy, KeepsHoles)
{
    constexpr off_t kSize = off_t{5} << 30;
    const kx::UniqueFd memory(memfd_create("sparse", MFD_CLOEXEC));
    for (const off_t at : {off_t{0}, kSize / 2})
        ASSERT_EQ(pwrite(memory.Get(), "text", 4, at), 4);
    ASSERT_EQ(ftruncate(memory.Get(), kSize), 0);
    ASSERT_TRUE(CopyFileA(("C:\\proc\\self\\fd\\" + std::to_string(memory.Get())).c_str(), "X:\\one", 0));
    ASSERT_TRUE(CopyFileA("X:\\one", "X:\\two", 0));
    for (const char* copy : {"one", "two"}) {
        const kx::UniqueFd fd(open(drive.Path(copy).c_str(), O_RDONLY));
        struct stat info = {};
        ASSERT_EQ(fstat(fd.Get(), &info), 0);
        EXPECT_EQ(info.st_size, kSize);
        EXPECT_LT(info.st_blocks * 512, off_t{1} << 20);
        for (const off_t at : {off_t{0}, kSize / 2}) {
            std::array<char, 4> text{};
            EXPECT_EQ(pread(fd.Get(), text.data(), 4, at), 4);
            EXPECT_EQ(std::string_view(text.data(), 4), "text");
        }
    }
}

TEST_F(Delete, TakesFilesAndLinksButNothingReadOnly)
{
    for (const char* file : {"File", "locked", "dir/in"})
        drive.Write(file, "");
    ReadOnly(drive.Path("locked"));
    mkfifo(drive.Path("pipe").c_str(), 0600);
    fs::create_symlink("locked", drive.Path("tofile"));
    fs::create_symlink("gone", drive.Path("dangling"));
    fs::create_directory_symlink("dir", drive.Path("todir"));
    const std::pair<const char*, DWORD> facts[] = {
        {"X:\\file\\", ERROR_DIRECTORY},    {"X:\\file", ERROR_SUCCESS},
        {"X:\\file", ERROR_FILE_NOT_FOUND}, {"X:\\none\\x", ERROR_PATH_NOT_FOUND},
        {"C:\\none", ERROR_FILE_NOT_FOUND}, {"X:\\locked", ERROR_ACCESS_DENIED},
        {"X:\\tofile", ERROR_SUCCESS},      {"X:\\dangling", ERROR_SUCCESS},
        {"X:\\pipe", ERROR_SUCCESS},        {"X:\\dir", ERROR_ACCESS_DENIED},
        {"X:\\todir", ERROR_ACCESS_DENIED}, {"X:\\", ERROR_ACCESS_DENIED}};
    for (const auto& [path, error] : facts)
        EXPECT_EQ(Outcome(DeleteFileA(path)), error) << path;
    EXPECT_EQ(Entries(drive.Path()), 3u);
}

TEST_F(Directory, IsMadeOnceAndRemovedEmpty)
{
    drive.Write("file", "");
    EXPECT_EQ(Outcome(CreateDirectoryA("X:\\Dir\\", nullptr)), ERROR_SUCCESS);
    EXPECT_EQ(Outcome(CreateDirectoryA("X:\\DIR\\\\In", nullptr)), ERROR_SUCCESS);
    for (const char* path : {"X:\\dir", "X:\\file", "X:\\"})
        EXPECT_EQ(Outcome(CreateDirectoryA(path, nullptr)), ERROR_ALREADY_EXISTS) << path;
    for (const char* path : {"X:\\none\\a", "X:\\file\\a"})
        EXPECT_EQ(Outcome(CreateDirectoryA(path, nullptr)), ERROR_PATH_NOT_FOUND) << path;
    fs::create_directory_symlink("Dir", drive.Path("link"));
    const std::pair<const char*, DWORD> facts[] = {
        {"X:\\dir\\", ERROR_DIR_NOT_EMPTY},   {"X:\\link\\", ERROR_SUCCESS},
        {"X:\\dir\\in", ERROR_SUCCESS},       {"X:\\dir\\", ERROR_SUCCESS},
        {"X:\\file", ERROR_DIRECTORY},        {"X:\\dir", ERROR_FILE_NOT_FOUND},
        {"X:\\none\\a", ERROR_PATH_NOT_FOUND}};
    for (const auto& [path, error] : facts)
        EXPECT_EQ(Outcome(RemoveDirectoryA(path)), error) << path;
    fs::remove(drive.Path("file"));
    EXPECT_EQ(Outcome(RemoveDirectoryA("X:\\")), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(fs::exists(drive.Path()));
}

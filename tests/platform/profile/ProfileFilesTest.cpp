#include "tests/platform/profile/IniFixture.h"

#include <sys/xattr.h>

namespace {

using test::IniFile;
namespace fs = std::filesystem;

constexpr std::size_t kMaxFile = 16 * 1024 * 1024;
constexpr char kLeftover[] = ".test.ini.kxnew";

mode_t ModeOf(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

void ExpectUnusable(const IniFile& ini)
{
    EXPECT_EQ(ini.Get("S", "k"), "<none>");
    EXPECT_FALSE(ini.Set("S", "k", "v"));
    EXPECT_NE(GetLastError(), ERROR_SUCCESS);
    EXPECT_EQ(ini.Names(), std::set<std::string>{"test.ini"});
}

TEST(ProfileFiles, WhatIsNoFileIsNeitherReadNorWaitedForNorReplaced)
{
    const std::function<void(const std::string&)> makers[] = {
        [](const auto& path) { fs::create_directory(path); },
        [](const auto& path) { mkfifo(path.c_str(), 0600); },
        [](const auto& path) { fs::create_symlink("/dev/zero", path); },
        [](const auto& path) { fs::create_symlink("test.ini", path); }, // a link to itself
    };
    for (const auto& make : makers) {
        const IniFile ini;
        make(ini.Path());
        ExpectUnusable(ini);
    }
}

TEST(ProfileFiles, SizeIsLimitedTo16MiB)
{
    const IniFile ini("[S]\nk=v\n");
    fs::resize_file(ini.Path(), kMaxFile);
    EXPECT_EQ(ini.Get("S", "k"), "v");
    EXPECT_FALSE(ini.Set("S", "l", "no more room"));
    EXPECT_EQ(fs::file_size(ini.Path()), kMaxFile);
    EXPECT_TRUE(ini.Set("S", "k", ""));
    EXPECT_EQ(fs::file_size(ini.Path()), kMaxFile - 1);
    EXPECT_TRUE(ini.Set("S", "k", "w"));
    fs::resize_file(ini.Path(), kMaxFile + 1);
    ExpectUnusable(ini);
}

TEST(ProfileFiles, GiantLinesAndManyLinesAreOrdinary)
{
    const std::string giant(1'000'000, 'x');
    const IniFile ini("[S]\n" + giant + "=1\nk=" + giant + "\nl=2\n[" + giant + "]\nk=3\n");
    EXPECT_EQ(ini.Get("S", giant.c_str()), "1");
    EXPECT_EQ(ini.Get("S", "k"), giant.substr(0, 1023));
    EXPECT_EQ(ini.Get("S", "l"), "2");
    EXPECT_EQ(ini.Get(giant.c_str(), "k"), "3");

    std::string many = "[S]\n";
    for (int n = 0; n < 60'000; ++n)
        many += "@`"[n % 2] + std::to_string(n) + "=" + std::to_string(n) + "\n";
    ini.Replace(many);
    EXPECT_EQ(ini.Get("s", "`59999"), "59999");
    EXPECT_EQ(ini.Get("s", "@60000"), "<none>");
}

TEST(ProfileFiles, PermissionsStay)
{
    const IniFile ini("[S]\nk=v\n");
    for (const mode_t mode : {0600u, 0640u, 0666u, 0755u}) {
        chmod(ini.Path().c_str(), mode);
        ASSERT_TRUE(ini.Set("S", "k", std::to_string(mode).c_str()));
        EXPECT_EQ(ModeOf(ini.Path()), mode);
    }
    const mode_t mask = umask(027);
    fs::remove(ini.Path());
    EXPECT_TRUE(ini.Set("S", "k", "v"));
    EXPECT_EQ(ModeOf(ini.Path()), 0640u);
    umask(mask);
}

// User 1 may read, the owner's group may not. A file without a list gets none that its directory has for new
// ones.
TEST(ProfileFiles, AnAccessListStays)
{
    constexpr char kFiles[] = "system.posix_acl_access";
    constexpr std::uint32_t nobody = ~0u;
    struct Entry
    {
        std::uint16_t kind, rights;
        std::uint32_t id;
    };
    struct
    {
        std::uint32_t version = 2;
        Entry owner{1, 6, nobody}, user{2, 4, 1}, group{4, 0, nobody}, mask{16, 4, nobody},
            rest{32, 0, nobody};
    } const list;
    const IniFile ini("[S]\nk=v\n");
    const auto listNow = [&] {
        std::string bytes(200, '\0');
        const ssize_t length = getxattr(ini.Path().c_str(), kFiles, bytes.data(), bytes.size());
        return length < 0 ? "none" : bytes.substr(0, static_cast<std::size_t>(length));
    };
    if (setxattr(ini.Path().c_str(), kFiles, &list, sizeof(list), 0) != 0 && errno == EOPNOTSUPP)
        GTEST_SKIP() << "the file system has no access lists";
    EXPECT_TRUE(ini.Set("S", "k", "w"));
    EXPECT_EQ(listNow(), std::string(reinterpret_cast<const char*>(&list), sizeof(list)));

    EXPECT_EQ(removexattr(ini.Path().c_str(), kFiles), 0);
    EXPECT_EQ(setxattr(ini.Dir().Path().c_str(), "system.posix_acl_default", &list, sizeof(list), 0), 0);
    EXPECT_TRUE(ini.Set("S", "k", "x"));
    EXPECT_EQ(listNow(), "none");
}

// Only root can give a file away.
TEST(ProfileFiles, OwnerGroupAndWholeModeStay)
{
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    constexpr uid_t kNobody = 65534;
    constexpr gid_t kGroup = 12345; // which nobody is in
    const IniFile ini("[S]\nk=v\n");
    const auto owner = [&] {
        struct stat now = {};
        EXPECT_EQ(stat(ini.Path().c_str(), &now), 0);
        return std::pair(now.st_uid, now.st_gid);
    };
    for (const mode_t mode : {02664u, 06755u, 0640u}) {
        ASSERT_EQ(chown(ini.Path().c_str(), kNobody, kGroup), 0);
        ASSERT_EQ(chmod(ini.Path().c_str(), mode), 0);
        ASSERT_TRUE(ini.Set("S", "k", std::to_string(mode).c_str()));
        EXPECT_EQ(ModeOf(ini.Path()), mode);
        EXPECT_EQ(owner(), std::pair(kNobody, kGroup));
    }

    // Its own group is another: the members of that get no more than everyone.
    ASSERT_EQ(chmod(ini.Path().c_str(), 02664), 0);
    ASSERT_EQ(chmod(ini.Dir().Path().c_str(), 0777), 0);
    ASSERT_EQ(seteuid(kNobody), 0);
    EXPECT_TRUE(ini.Set("S", "k", "by its owner"));
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_EQ(ModeOf(ini.Path()), 0644u);

    ASSERT_EQ(chown(ini.Path().c_str(), 0, kGroup), 0);
    EXPECT_TRUE(ini.Set("S", "k", "in another group"));
    EXPECT_EQ(owner(), std::pair(uid_t{0}, kGroup));
}

TEST(ProfileFiles, FullDiskLeavesTheOldFile)
{
    const IniFile ini("[S]\nk=v\n");
    {
        const test::FileLimit limit(4096);
        EXPECT_FALSE(ini.Set("S", "l", std::string(10'000, 'x').c_str()));
        EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    }
    EXPECT_EQ(ini.Text(), "[S]\nk=v\n");
    EXPECT_EQ(ini.Names(), std::set<std::string>{"test.ini"});
}

TEST(ProfileFiles, LinksStayAndTheirTargetIsReplaced)
{
    const IniFile ini;
    ini.Dir().Write("real/file", "[S]\nk=v\n");
    fs::create_symlink("real/file", ini.Dir().Path("link"));
    fs::create_symlink(ini.Dir().Path("link"), ini.Path());
    EXPECT_TRUE(ini.Set("S", "k", "w"));
    EXPECT_TRUE(fs::is_symlink(ini.Path()));
    EXPECT_TRUE(fs::is_symlink(ini.Dir().Path("link")));
    EXPECT_EQ(ini.Dir().Read("real/file"), "[S]\nk=w\n");
    EXPECT_EQ(ini.Get("S", "k"), "w");

    fs::remove(ini.Dir().Path("real/file"));
    EXPECT_EQ(ini.Get("S", "k"), "<none>");
    EXPECT_TRUE(ini.Set("S", "k", "x"));
    EXPECT_EQ(ini.Dir().Read("real/file"), "[S]\r\nk=x\r\n");
}

TEST(ProfileFiles, LeftoversOfOthersDoNoHarm)
{
    const IniFile ini("[S]\nk=v\n");
    const std::string leftover = ini.Dir().Path(kLeftover);

    ini.Dir().Write(kLeftover, std::string(1000, '#')); // a killed writer's
    EXPECT_TRUE(ini.Set("S", "k", "1"));

    const std::string victim = ini.Dir().Write("victim", "precious"); // with another name too
    fs::create_hard_link(victim, leftover);
    EXPECT_TRUE(ini.Set("S", "k", "2"));
    EXPECT_EQ(ini.Dir().Read("victim"), "precious");

    ASSERT_EQ(mkfifo(leftover.c_str(), 0600), 0);
    EXPECT_TRUE(ini.Set("S", "k", "3"));
    EXPECT_EQ(ini.Text(), "[S]\nk=3\n");

    fs::create_symlink(victim, leftover); // isn't followed
    EXPECT_FALSE(ini.Set("S", "k", "4"));
    EXPECT_EQ(ini.Dir().Read("victim"), "precious");
    fs::remove(leftover);
    EXPECT_EQ(ini.Names(), (std::set<std::string>{"test.ini", "victim"}));
}

TEST(ProfileFiles, TheLongestNameIsWritten)
{
    const test::TempDir dir;
    for (const std::size_t length : {std::size_t{200}, 259 - dir.Win("").View().size() - 1}) {
        const std::string name(length, 'n');
        EXPECT_TRUE(WritePrivateProfileStringA("S", "k", "v", dir.Win(name)));
        EXPECT_EQ(dir.Read(name), "[S]\r\nk=v\r\n");
    }
}

// A user without rights does this where the tests run as root.
TEST(ProfileFiles, WhatMayNotBeReadOrWrittenStays)
{
    const IniFile ini("[S]\nk=v\n");
    const auto tryAs = [&](mode_t file, mode_t directory, const char* expected) {
        chmod(ini.Path().c_str(), file);
        chmod(ini.Dir().Path().c_str(), directory);
        const test::Nobody nobody;
        EXPECT_EQ(ini.Get("S", "k"), expected);
        EXPECT_FALSE(ini.Set("S", "k", "w"));
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    };
    tryAs(0444, 0777, "v");
    tryAs(0000, 0777, "<none>");
    tryAs(0666, 0555, "v");
    chmod(ini.Dir().Path().c_str(), 0700);
    EXPECT_EQ(ini.Text(), "[S]\nk=v\n");
    EXPECT_EQ(ini.Names(), std::set<std::string>{"test.ini"});
}

} // namespace

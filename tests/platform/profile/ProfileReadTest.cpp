#include "include/platform/FileSystem.h"
#include "platform/UniqueFd.h"
#include "platform/profile/IniCache.h"
#include "tests/platform/profile/IniFixture.h"
#include "tests/support/Process.h"

namespace {

using test::IniFile;
using std::literals::operator""sv;

TEST(ProfileRead, FindsWhatTheLinesSay)
{
    const std::string none = "<none>";
    const std::tuple<std::string_view, const char*, const char*, std::string> cases[] = {
        {"[S]\r\nk=v\r\n", "S", "k", "v"},
        {"[S]\nk=v", "S", "k", "v"},
        {"\xEF\xBB\xBF[S]\nk=v\n", "S", "k", "v"},
        {" \t[ S ] ; remark\n\t k \t=\t v w \t\r\n", "S", "k", "v w"},
        {"[S]\nk=v\n", " s\t", " K ", "v"},
        {"[LONG section Name]\nA rather long KEY=v\n", "long SECTION nAME", "a RATHER long key", "v"},
        {"[S]\nk=a=b;c\n", "S", "k", "a=b;c"},
        {"[S]\nk=\" v \"\nq=' w '\n", "S", "k", " v "},
        {"[S]\nk=\" v \"\nq=' w '\n", "S", "q", " w "},
        {"[S]\nk=\"v'\n", "S", "k", "\"v'"},
        {"[S]\nk=\"\n", "S", "k", "\""},
        {"[S]\nk=\"\"\n", "S", "k", ""},
        {"[S]\nk=\n", "S", "k", ""},
        {"[S]\n;k=v\nk\n=v\n", "S", "k", none},
        {"k=v\n[S]\n", "", "k", none},
        {"[]\nk=v\n", "", "k", "v"},
        {"[S\nk=v\n", "S", "k", "v"},
        {"[a]b]\nk=v\n", "a", "k", "v"},
        {"[[]\n#=[x]\n", "[", "#", "[x]"},
        {"[S]\na key; with [marks]=;c\n", "S", "a key; with [marks]", ";c"},
        {"[S]\nk=1\nK=2\n[T]\n[s]\nk=3\nl=4\n", "S", "k", "1"},
        {"[S]\nk=1\nK=2\n[T]\n[s]\nk=3\nl=4\n", "S", "l", none},
        {"[S]\nk=a\0b\n\0\nl=w\n"sv, "S", "k", "a"},
        {"[S]\nk=a\0b\n\0\nl=w\n"sv, "S", "l", "w"},
        {"", "S", "k", none},
        {"\xEF\xBB\xBF", "S", "k", none},
    };
    for (const auto& [text, section, key, value] : cases)
        EXPECT_EQ(IniFile(text).Get(section, key), value) << text;
}

TEST(ProfileRead, NamesAreFoldedByCharacters)
{
    // In the double-byte code page "\x81\x41" and "\x81\x61" are two characters, and "\x81\x5D" holds no
    // bracket.
    const IniFile ini("[S]\n\x81\x41x=1\n\x81\x61X=2\n[\x81\x5D]\nk=3\n");
    EXPECT_EQ(ini.Get("S", "\x81\x61x"), "2");
    EXPECT_EQ(ini.Get("S", "\x81\x41X"), "1");
    EXPECT_EQ(ini.Get("\x81\x5D", "k"), "3");
    test::LetSettle(ini.Path());
    EXPECT_EQ(ini.Get("S", "\x81\x41X"), "1");
    const test::CodePage utf8(CP_UTF8);
    EXPECT_EQ(ini.Get("S", "\x81\x61x"), "1");
    EXPECT_EQ(ini.Get("\x81", "k"), "3");
}

TEST(ProfileRead, DefaultStandsInAndIsCutLikeAValue)
{
    const IniFile ini("[S]\nk=abcdef\nwide=ab\xC4\xE3\n");
    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(ini.Get("S", "none", "default"), "default");
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ini.Get("none", "k", nullptr), "");
    EXPECT_EQ(ini.Get(nullptr, "k", "d"), "d");
    EXPECT_EQ(ini.Get("S", nullptr, "d"), "d");

    std::array<char, 8> buffer;
    const auto get = [&](const char* pszKey, DWORD nSize, const CString& strFile) {
        buffer.fill('#');
        const DWORD length = GetPrivateProfileStringA("S", pszKey, "fallback", buffer.data(), nSize, strFile);
        EXPECT_EQ(buffer[nSize], '#');
        EXPECT_EQ(length, strlen(buffer.data()));
        return std::string(buffer.data());
    };
    EXPECT_EQ(get("k", 4, ini.Win()), "abc");
    EXPECT_EQ(get("wide", 4, ini.Win()), "ab");
    EXPECT_EQ(get("none", 4, ini.Win()), "fal");
    EXPECT_EQ(get("k", 1, ini.Win()), "");
    for (const char* pszFile : {"", "Q:\\a.ini", "C:\\no such directory\\a.ini", "no such file.ini"})
        EXPECT_EQ(get("k", 4, pszFile), "fal") << pszFile;
    EXPECT_EQ(GetPrivateProfileStringA("S", "k", "d", buffer.data(), 0, ini.Win()), 0u);
    EXPECT_EQ(GetPrivateProfileStringA("S", "k", "d", nullptr, 4, ini.Win()), 0u);
    EXPECT_EQ(GetPrivateProfileStringA("S", "k", "d", buffer.data(), 4, nullptr), 1u);
}

// The stamp of a file that is written in place, to the same size and within one tick of the clock, stays.
TEST(ProfileRead, SeesEveryChangeMadeInPlace)
{
    const IniFile ini("[S]\nk=0000\n");
    const kx::UniqueFd fd(open(ini.Path().c_str(), O_WRONLY | O_CLOEXEC));
    constexpr timespec kSame[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    for (int n = 0; n < 3000; ++n) {
        const std::string value = std::to_string(1000 + n);
        ASSERT_EQ(pwrite(fd.Get(), value.data(), value.size(), 6), 4);
        if (n % 2 == 0) futimens(fd.Get(), kSame);
        ASSERT_EQ(ini.Get("S", "k"), value);
    }
}

TEST(ProfileRead, AStatusCountsOnceItsTickIsOver)
{
    // When it was modified and changed, in nanoseconds behind 100 seconds.
    const std::tuple<long, long, timespec, bool> cases[] = {
        {0, 999'999'999, {101, 7'999'999}, false}, {0, 999'999'999, {101, 8'000'000}, true},
        {1, 0, {100, 8'000'000}, false},           {1, 0, {100, 8'000'001}, true},
        {0, 0, {102, 8'000'000}, false},           {0, 0, {102, 8'000'001}, true},
    };
    for (const auto& [modified, changed, now, bSettled] : cases) {
        struct stat status = {};
        status.st_mtim = {100, modified};
        status.st_ctim = {100, changed};
        EXPECT_EQ(kx::profile::IsSettled(status, now, 4'000'000), bSettled) << modified << changed;
    }
}

// A file that hasn't changed for a while is known by its stamp alone; the time of modification can be set
// back.
TEST(ProfileRead, SeesAChangeThatHidesItself)
{
    const IniFile ini("[S]\nk=0000\n;" + std::string(100'000, 'x'));
    const kx::UniqueFd fd(open(ini.Path().c_str(), O_WRONLY | O_CLOEXEC));
    test::LetSettle(ini.Path());
    EXPECT_EQ(ini.Get("S", "k"), "0000");
    const std::uint64_t nBefore = test::BytesRead();
    EXPECT_EQ(ini.Get("S", "k"), "0000");
    EXPECT_LT(test::BytesRead() - nBefore, 10'000u);
    struct stat status = {};
    ASSERT_EQ(fstat(fd.Get(), &status), 0);
    const timespec old[] = {status.st_atim, status.st_mtim};
    ASSERT_EQ(pwrite(fd.Get(), "1111", 4, 6), 4);
    futimens(fd.Get(), old);
    EXPECT_EQ(ini.Get("S", "k"), "1111");
}

TEST(ProfileRead, SeesEveryReplacementAndEnd)
{
    const IniFile ini;
    for (int n = 0; n < 150; ++n) {
        const std::string value = std::to_string(1000 + n);
        ini.Dir().Write("other", "[S]\nk=" + value + "\n");
        std::filesystem::rename(ini.Dir().Path("other"), ini.Path());
        ASSERT_EQ(ini.Get("S", "k"), value);
        if (n % 7 != 0) continue;
        std::filesystem::remove(ini.Path());
        ASSERT_EQ(ini.Get("S", "k"), "<none>");
    }
}

TEST(ProfileRead, EverySpellingGivesTheFileThatItNames)
{
    const test::TempDir dir;
    dir.Write("Skins/Blue/Skin.ini", "[S]\nk=Skin\n");
    const auto get = [](const CString& strFile) {
        std::array<char, 16> value;
        GetPrivateProfileStringA("S", "k", "-", value.data(), value.size(), strFile);
        return std::string(value.data());
    };
    test::LetSettle(dir.Path("Skins/Blue/Skin.ini"));
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(get(dir.Win("Skins\\Blue\\Skin.ini")), "Skin");
        EXPECT_EQ(get(dir.Win("SKINS\\blue\\..\\blue\\skin.INI")), "Skin");
        EXPECT_EQ(get(("C:" + dir.Path("Skins/Blue/Skin.ini")).c_str()), "Skin");
    }
    EXPECT_EQ(get(dir.Win("Skins\\Blue\\skin.ini")), "Skin");
    // An exact name wins as soon as it is there, and the others count again when it goes.
    const std::string exact = dir.Write("Skins/Blue/skin.ini", "[S]\nk=skin\n");
    EXPECT_EQ(get(dir.Win("Skins\\Blue\\skin.ini")), "skin");
    std::filesystem::remove(exact);
    EXPECT_EQ(get(dir.Win("Skins\\Blue\\skin.ini")), "Skin");

    test::LetSettle(dir.Write("Mounted/Skins/Blue/Skin.ini", "[S]\nk=there\n"));
    KXHost::MountDrive('K', {dir.Path("Mounted"), DRIVE_FIXED, "", "", 0});
    EXPECT_EQ(get("K:\\Skins\\Blue\\Skin.ini"), "there");
    KXHost::MountDrive('K', {dir.Path(), DRIVE_FIXED, "", "", 0});
    EXPECT_EQ(get("K:\\Skins\\Blue\\Skin.ini"), "Skin");
    KXHost::UnmountDrive('K');
    EXPECT_EQ(get("K:\\Skins\\Blue\\Skin.ini"), "-");
}

TEST(ProfileRead, TheFilesUsedLastAreKept)
{
    using namespace kx::profile;
    IniCache cache;
    const auto put = [&](int n, std::size_t size) {
        const struct stat status = {};
        auto file = std::make_shared<const CachedIni>("", status, timespec{}, std::string(size, ';'), 0u);
        cache.Put(std::to_string(n), std::move(file));
    };
    for (int n = 0; n < static_cast<int>(IniCache::kMaxFiles); ++n)
        put(n, 0);
    EXPECT_TRUE(cache.Find("0"));
    put(100, 0);
    EXPECT_TRUE(cache.Find("0"));
    EXPECT_FALSE(cache.Find("1"));
    EXPECT_TRUE(cache.Find("2"));
    for (const int n : {101, 102, 103})
        put(n, IniCache::kMaxBytes / 3 + 1);
    EXPECT_FALSE(cache.Find("101"));
    EXPECT_TRUE(cache.Find("102"));
    put(104, IniCache::kMaxBytes + 1);
    EXPECT_FALSE(cache.Find("104"));
    EXPECT_TRUE(cache.Find("103"));
    put(105, IniCache::kMaxBytes);
    EXPECT_TRUE(cache.Find("105"));
}

} // namespace

#include "tests/platform/files/Mounted.h"

namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

using Names = std::vector<std::string>;

Names Find(const char* pszPattern)
{
    Names names;
    WIN32_FIND_DATAA data;
    const HANDLE hFind = FindFirstFileA(pszPattern, &data);
    if (hFind == INVALID_HANDLE_VALUE) return names;
    do
        names.emplace_back(data.cFileName);
    while (FindNextFileA(hFind, &data));
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_TRUE(FindClose(hFind));
    return names;
}

WIN32_FIND_DATAA First(const char* pszPath)
{
    WIN32_FIND_DATAA data{};
    const HANDLE hFind = FindFirstFileA(pszPath, &data);
    EXPECT_TRUE(FindClose(hFind));
    return data;
}

// Since 1970, in steps of 100 ns.
std::int64_t UnixSteps(const FILETIME& time)
{
    return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime) -
           116'444'736'000'000'000;
}

using Search = test::OnDrive;

} // namespace

TEST_F(Search, DeliversDotsFirstThenNamesInOrderIgnoringCase)
{
    EXPECT_THAT(Find("X:\\*"),
                ElementsAre(".", "..")); // also in a root, so that an empty one can be searched
    for (const char* file : {"b", "A", "a", "C.txt", "_", ".hid", "sub/in"})
        drive.Write(file, "");
    EXPECT_THAT(Find("X:\\*"), ElementsAre(".", "..", ".hid", "_", "A", "a", "b", "C.txt", "sub"));
    EXPECT_THAT(Find("x:/SUB/*"), ElementsAre(".", "..", "in"));
    EXPECT_THAT(Find("X:\\a"), ElementsAre("a"));
    EXPECT_THAT(Find("X:\\c.TXT"), ElementsAre("C.txt")); // by its own name
    EXPECT_THAT(Find("X:\\sub\\."), ElementsAre("sub"));
    SetCurrentDirectoryA("X:\\sub");
    EXPECT_THAT(Find("i*"), ElementsAre("in"));
    EXPECT_THAT(Find("X:i?"), ElementsAre("in"));
    EXPECT_THAT(Find("\\c*"), ElementsAre("C.txt"));
}

TEST_F(Search, WildcardsStandForCharacters)
{
    // The third is three characters in two, four and two bytes, the second byte of the first a backslash.
    for (const char* file : {"name", "name.txt", "\xE8\xAA\xA0\xC3\xB1\xE4\xB8\xAD.TXT", "a.tar.gz", "aXbXc"})
        drive.Write(file, "");
    const std::string chinese = drive.Of("\xE8\xAA\xA0\xC3\xB1\xE4\xB8\xAD.TXT").Mid(3).GetString();
    const std::pair<std::string, Names> facts[] = {
        {"*.*", {".", "..", "a.tar.gz", "aXbXc", "name", "name.txt", chinese}},
        {"*.txt", {"name.txt", chinese}},
        {"NAME.*", {"name", "name.txt"}},
        {"???.txt", {chinese}},
        {"????.*", {"name", "name.txt"}},
        {"*ac", {}},
        {"*?", {".", "..", "a.tar.gz", "aXbXc", "name", "name.txt", chinese}},
        {"a*x*c", {"aXbXc"}},
        {"a*.*.gz", {"a.tar.gz"}},
        {"\xD5\x5C*", {chinese}},
        {"\xD5\x5C??.txt", {chinese}},
        {"*\xD6\xD0.*", {chinese}},
        {"*z*", {"a.tar.gz"}},
        {"*" + std::string(120, '*') + "q" + std::string(120, '*'), {}}};
    for (const auto& [pattern, names] : facts)
        EXPECT_EQ(Find(("X:\\" + pattern).c_str()), names) << pattern;
}

TEST_F(Search, RecordsTellKindSizeAndTimes)
{
    drive.Write("file", "12345");
    drive.Write("locked", "");
    drive.Write("sub/in", "");
    fs::permissions(drive.Path("locked"), fs::perms{0555});
    fs::create_symlink("file", drive.Path("link"));
    fs::create_symlink("sub", drive.Path("linkdir"));
    fs::create_symlink("gone", drive.Path("dangling"));
    mkfifo(drive.Path("pipe").c_str(), 0600);
    drive.Write(".hid", "");
    const timespec times[] = {{1'500'000'000, 0}, {-1, 500'000'000}};
    utimensat(AT_FDCWD, drive.Path("file").c_str(), times, 0);
    fs::resize_file(drive.Path(".hid"), (std::uint64_t{1} << 32) + 7);

    constexpr DWORD kLink = FILE_ATTRIBUTE_REPARSE_POINT;
    const std::tuple<const char*, DWORD, std::uint64_t> kinds[] = {
        {"X:\\file", FILE_ATTRIBUTE_NORMAL, 5},
        {"X:\\locked", FILE_ATTRIBUTE_READONLY, 0},
        {"X:\\sub", FILE_ATTRIBUTE_DIRECTORY, 0},
        {"X:\\link", kLink, 5},
        {"X:\\linkdir", kLink | FILE_ATTRIBUTE_DIRECTORY, 0},
        {"X:\\dangling", kLink, 0},
        {"X:\\pipe", FILE_ATTRIBUTE_SYSTEM, 0},
        {"X:\\.hid", FILE_ATTRIBUTE_HIDDEN, (std::uint64_t{1} << 32) + 7}};
    for (const auto& [path, kind, size] : kinds) {
        const auto data = First(path);
        EXPECT_EQ(data.dwFileAttributes, kind) << path;
        EXPECT_EQ(std::uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow, size) << path;
        EXPECT_EQ(GetFileAttributesA(path), kind) << path;
        EXPECT_TRUE(PathFileExistsA(path));
    }
    EXPECT_EQ(First("X:\\*").dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY); // `.`, which isn't hidden
    const auto file = First("X:\\file");
    EXPECT_EQ(UnixSteps(file.ftLastAccessTime), 15'000'000'000'000'000);
    EXPECT_EQ(UnixSteps(file.ftLastWriteTime), -5'000'000);
    EXPECT_FALSE(PathFileExistsA("X:\\file\\"));
    EXPECT_EQ(GetLastError(), ERROR_DIRECTORY);
    EXPECT_TRUE(PathFileExistsA("X:\\sub\\"));
}

TEST_F(Search, NamesThatNoPathCanSayAreNotDelivered)
{
    std::string twobyte;
    for (int i = 0; i < 64; ++i)
        twobyte += "\xC3\xB1"; // four bytes each in code page 936
    drive.Write("good", "");
    for (const std::string& name : {std::string("back\\slash"), std::string("\xFF\xFE"), twobyte + "nnnn"})
        drive.Write(name, "");
    EXPECT_THAT(Find("X:\\*"), ElementsAre(".", "..", "good"));
    EXPECT_THAT(Find("X:\\*n"), ElementsAre());
    const test::CodePage utf8(CP_UTF8);
    EXPECT_THAT(Find("X:\\*n"), ElementsAre(twobyte + "nnnn"));
}

TEST_F(Search, FailuresSayWhatIsMissing)
{
    drive.Write("file", "");
    const std::pair<const char*, DWORD> facts[] = {
        {"X:\\none", ERROR_FILE_NOT_FOUND},    {"X:\\none*", ERROR_FILE_NOT_FOUND},
        {"X:\\none\\*", ERROR_PATH_NOT_FOUND}, {"X:\\none\\a", ERROR_PATH_NOT_FOUND},
        {"X:\\file\\*", ERROR_PATH_NOT_FOUND}, {"X:\\", ERROR_FILE_NOT_FOUND},
        {"X:\\file\\", ERROR_FILE_NOT_FOUND},  {"X:\\no*ne\\file", ERROR_PATH_NOT_FOUND}};
    WIN32_FIND_DATAA data{};
    for (const auto& [pattern, error] : facts) {
        EXPECT_EQ(FindFirstFileA(pattern, &data), INVALID_HANDLE_VALUE) << pattern;
        EXPECT_EQ(GetLastError(), error) << pattern;
    }
    EXPECT_EQ(FindFirstFileA("X:\\file", nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(Search, HandlesAreCountedAndStaleOnesRefused)
{
    for (const char* file : {"1", "2", "3"})
        drive.Write(file, "");
    const int nBefore = KXHost::LiveHandles();
    WIN32_FIND_DATAA data{};
    const HANDLE hFind = FindFirstFileA("X:\\?", &data);
    EXPECT_EQ(KXHost::LiveHandles(), nBefore + 1);
    EXPECT_FALSE(FindNextFileA(hFind, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    fs::remove(drive.Path("1"));
    fs::remove(drive.Path("2")); // deleted since, so passed over
    drive.Write("4", "");        // not there at the opening
    Names rest;
    while (FindNextFileA(hFind, &data))
        rest.emplace_back(data.cFileName);
    EXPECT_THAT(rest, ElementsAre("3"));
    EXPECT_TRUE(FindClose(hFind));
    for (const HANDLE hBad :
         {hFind, INVALID_HANDLE_VALUE, HANDLE{nullptr}, reinterpret_cast<HANDLE>(&data)}) {
        EXPECT_FALSE(FindClose(hBad));
        EXPECT_FALSE(FindNextFileA(hBad, &data));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(KXHost::LiveHandles(), nBefore);
}

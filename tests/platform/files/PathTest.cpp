#include "tests/platform/files/Mounted.h"

namespace fs = std::filesystem;

namespace {

constexpr DWORD kUntouched = 12345;

// The last error that an operation leaves.
DWORD ErrorOf(const std::function<void()>& operation)
{
    SetLastError(kUntouched);
    operation();
    return GetLastError();
}

using Path = test::OnDrive;

} // namespace

TEST_F(Path, IsTakenApartInItsText)
{
    std::istringstream facts(
        R"(X:\ /  x:/ /  X:\a\b /a/b  x:/a\b/ /a/b  X:\\a\\\b\\ /a/b  X:\.\a\.\b\. /a/b  X:\gone\..\a /a
           X:\..\..\a\..\..\..\b /b  X:\.. /  X:\...\..a /.../..a  X:\a:b /a:b  X:\a*b? /a*b?)");
    for (std::string path, named; facts >> path >> named;)
        EXPECT_EQ(drive.Named(path.c_str()), named) << path;
}

TEST_F(Path, RelativeOnesBeginInTheCurrentDirectoryAndItsDrive)
{
    drive.MakeDir("work/deep");
    EXPECT_TRUE(SetCurrentDirectoryA("x:\\WORK\\deep"));
    const std::pair<const char*, const char*> facts[] = {
        {"a", "/work/deep/a"},       {".", "/work/deep"},  {"..\\a", "/work/a"},
        {"..\\..\\..\\..\\a", "/a"}, {"\\a", "/a"},        {"/a/b", "/a/b"},
        {"X:a", "/work/deep/a"},     {"X:", "/work/deep"}, {"..\\DEEP", "/work/deep"},
        {"\\\\host\\a", "/host/a"}};
    for (const auto& [path, named] : facts)
        EXPECT_EQ(drive.Named(path), named) << path;
    EXPECT_EQ(KXHost::ToSystemPath("C:a"), "/a"); // another drive has no current directory of its own
    EXPECT_EQ(drive.Named("C:\\.."), "?");

    char buffer[MAX_PATH] = "as it was";
    EXPECT_EQ(GetCurrentDirectoryA(12, buffer), 13u);
    EXPECT_STREQ(buffer, "as it was");
    EXPECT_EQ(GetCurrentDirectoryA(13, buffer), 12u);
    EXPECT_STREQ(buffer, "X:\\work\\deep");
    EXPECT_EQ(GetCurrentDirectoryA(0, nullptr), 13u);
    EXPECT_TRUE(SetCurrentDirectoryA("\\"));
    EXPECT_EQ(GetCurrentDirectoryA(MAX_PATH, buffer), 3u);
    EXPECT_STREQ(buffer, "X:\\");
    EXPECT_EQ(GetSystemDirectoryA(buffer, MAX_PATH), 10u);
    EXPECT_STREQ(buffer, "C:\\usr\\lib");
    EXPECT_EQ(GetWindowsDirectoryA(buffer, 3), 7u);
    EXPECT_EQ(GetWindowsDirectoryA(buffer, MAX_PATH), 6u);
    EXPECT_STREQ(buffer, "C:\\usr");
    // It keeps its spelling through links until others move it.
    drive.MakeDir("real/inner");
    fs::create_directory_symlink(drive.Path("real"), drive.Path("link"));
    EXPECT_TRUE(SetCurrentDirectoryA("X:\\link\\inner"));
    EXPECT_EQ(drive.Named("."), "/link/inner");
    EXPECT_EQ(drive.Named("..\\a"), "/link/a");
    fs::current_path(drive.Path("real"));
    EXPECT_EQ(drive.Named("."), "/real");
    EXPECT_FALSE(SetCurrentDirectoryA("X:\\none"));
    EXPECT_EQ(drive.Named("a"), "/real/a");
    fs::current_path("/");
    EXPECT_EQ(drive.Named("tmp"), "?");
}

TEST_F(Path, ExactNameWinsElseTheLowestIgnoringCase)
{
    for (const char* file :
         {"Skins/Default/Skin.ini", "two/b", "two/B", "mix/NAME/in", "mix/Name", "é/Été", "one/É"})
        drive.Write(file, "");
    const std::pair<const char*, const char*> facts[] = {
        {"X:\\skins\\DEFAULT\\skin.INI", "/Skins/Default/Skin.ini"},
        {"X:\\SKINS\\new\\Default", "/Skins/new/Default"}, // what doesn't exist is taken as it stands
        {"X:\\two\\b", "/two/b"},
        {"X:\\TWO\\b", "/two/b"},
        {"X:\\two\\B", "/two/B"},
        {"X:\\mix\\name", "/mix/NAME"},
        {"X:\\mix\\name\\IN", "/mix/NAME/in"}, // the file `Name` holds nothing
        {"X:\\É\\ÉTÉ", "/é/Été"},
        {"X:\\one\\é", "/one/É"},
        {"X:\\two\\b\\c", "/two/b/c"} // a file holds nothing, and no other spelling is tried
    };
    for (const UINT page : {CP_GBK, CP_UTF8}) {
        const test::CodePage scope(page);
        for (const auto& [path, named] : facts) {
            std::string relative = path + 3;
            std::replace(relative.begin(), relative.end(), '\\', '/');
            EXPECT_EQ(drive.Named(drive.Of(relative)), named) << path;
        }
    }
    drive.Write("two/a/x", "");
    EXPECT_EQ(drive.Named("X:\\two\\A\\X"), "/two/a/x");
    drive.Write("\xC8\xBA/in", ""); // a byte less than the small letter has
    const test::CodePage utf8(CP_UTF8);
    EXPECT_EQ(drive.Named("X:\\\xE2\xB1\xA5\\IN"), "/\xC8\xBA/in");
}

TEST_F(Path, LargeDirectoriesAreKnownAsTheyAreNow)
{
    const auto fill = [&] {
        for (int i = 0; i < 300; ++i)
            drive.Write("big/File" + std::to_string(i), "");
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(drive.Named("X:\\big\\NONE"), "/big/NONE");
    };
    fill();
    EXPECT_EQ(drive.Named("X:\\BIG\\file299"), "/big/File299");
    drive.Write("big/none", "");
    EXPECT_EQ(drive.Named("X:\\big\\NONE"), "/big/none");
    drive.Write("big/None", "");
    EXPECT_EQ(drive.Named("X:\\big\\NONE"), "/big/None");
    drive.MakeDir("big/noNE");
    EXPECT_EQ(drive.Named("X:\\big\\NONE\\in"), "/big/noNE/in");
    fs::rename(drive.Path("big/None"), drive.Path("big/zz"));
    EXPECT_EQ(drive.Named("X:\\big\\nONE"), "/big/noNE");
    EXPECT_EQ(drive.Named("X:\\big\\ZZ"), "/big/zz");
    fs::remove_all(drive.Path("big"));
    EXPECT_EQ(drive.Named("X:\\big\\ZZ"), "/big/ZZ");
    fill();
    for (int i = 0; i < 9'000; ++i) { // more changes than the system keeps notices of
        fs::create_hard_link(drive.Path("big/File0"), drive.Path("big/link"));
        fs::remove(drive.Path("big/link"));
    }
    drive.Write("big/File299x", "");
    for (int i = 0; i < 2; ++i) // also when it isn't the first to miss a notice
        EXPECT_EQ(drive.Named("X:\\big\\FILE299X"), "/big/File299x");
}

TEST_F(Path, IsResolvedOnManyThreadsWhileDrivesAndDirectoriesChange)
{
    for (int i = 0; i < 300; ++i)
        drive.Write("big/File" + std::to_string(i), "");
    std::atomic<bool> bStop{false};
    test::RunThreads(4, [&](int t) {
        for (int i = 0; t == 0 && i < 100; ++i) {
            KXHost::MountDrive('Y', {"/other", DRIVE_FIXED, "", "", 0});
            CreateDirectoryA("X:\\BIG\\dir", nullptr);
            SetCurrentDirectoryA(i % 2 ? "X:\\big" : "X:\\");
            RemoveDirectoryA("X:\\big\\DIR");
            KXHost::UnmountDrive('Y');
        }
        if (t == 0) bStop = true;
        while (!bStop) {
            EXPECT_EQ(drive.Named("X:\\BIG\\file7"), "/big/File7");
            EXPECT_EQ(drive.Named("X:\\big\\new"), "/big/new");
            EXPECT_EQ(KXHost::FromSystemPath(drive.Path("big")), "X:\\big");
            KXHost::ToSystemPath("relative");
        }
    });
}

TEST_F(Path, NamesOfBothCodePagesSurviveTheRoundTrip)
{
    const char* names[] = {"plain",    "\xE8\xAA\xA0",     "\xE4\xB8\xAD\xE6\x96\x87",
                           "\xC3\xB1", "\xF0\x9F\x98\x80", "a b"};
    for (const UINT page : {CP_GBK, CP_UTF8}) {
        const test::CodePage scope(page);
        for (const std::string name : names)
            EXPECT_EQ(drive.Named(drive.Of(name + "/" + name)), "/" + name + "/" + name) << name;
    }
    // The second byte of this character is a backslash.
    EXPECT_EQ(drive.Named("X:\\\xD5\x5C\\\xD5\x5C"), "/\xE8\xAA\xA0/\xE8\xAA\xA0");
    EXPECT_EQ(drive.Of("\xE8\xAA\xA0"), "X:\\\xD5\x5C");
    const test::CodePage utf8(CP_UTF8);
    EXPECT_EQ(ErrorOf([] { KXHost::ToSystemPath("X:\\\xD5\x5C"); }), ERROR_INVALID_NAME);
}

TEST_F(Path, LinuxPathsOutsideTheDrivesOrTheirNamesHaveNone)
{
    EXPECT_EQ(KXHost::FromSystemPath("/usr//lib/./x/../y/"), "C:\\usr\\lib\\y");
    EXPECT_EQ(KXHost::FromSystemPath("/"), "C:\\");
    EXPECT_EQ(drive.Of(""), "X:\\");
    EXPECT_EQ(KXHost::FromSystemPath(drive.Path() + "y"), CString("C:") + drive.Win().Mid(2) + "y");
    for (const std::string path : {"", "relative", "/a\\b", "/\xFF"})
        EXPECT_EQ(KXHost::FromSystemPath(path), "");
    EXPECT_EQ(KXHost::FromSystemPath("/" + std::string(256, 'a')).GetLength(), 259);
    EXPECT_EQ(KXHost::FromSystemPath("/" + std::string(257, 'a')), "");

    EXPECT_TRUE(KXHost::MountDrive('c', {drive.Path() + "//c/./", DRIVE_FIXED, "", "", 0}));
    EXPECT_EQ(KXHost::FromSystemPath("/usr"), "");
    EXPECT_EQ(KXHost::ToSystemPath("C:\\usr"), drive.Path("c/usr"));
    EXPECT_EQ(drive.Of("c/usr"), "C:\\usr");
    KXHost::UnmountDrive('C');
    EXPECT_EQ(KXHost::ToSystemPath("C:\\usr"), "/usr");
}

TEST_F(Path, WhatNamesNothingFailsAlikeEverywhere)
{
    const std::string longest = "X:\\" + std::string(256, 'a');
    const std::string overlong = longest + "a";
    const std::string huge = "X:\\" + std::string(1'000'000, 'b');
    const std::pair<const char*, DWORD> facts[] = {{nullptr, ERROR_PATH_NOT_FOUND},
                                                   {"", ERROR_PATH_NOT_FOUND},
                                                   {"Q:\\a", ERROR_PATH_NOT_FOUND},
                                                   {"X:\\\xFF\xFF", ERROR_INVALID_NAME},
                                                   {overlong.c_str(), ERROR_FILENAME_EXCED_RANGE},
                                                   {huge.c_str(), ERROR_FILENAME_EXCED_RANGE}};
    WIN32_FIND_DATAA data;
    for (const auto& fact : facts) {
        const char* path = fact.first; // a lambda can't take a part of a pair everywhere
        const DWORD error = fact.second;
        const std::function<bool()> operations[] = {
            [&] { return !KXHost::ToSystemPath(path).empty(); },
            [&] { return PathFileExistsA(path) != 0; },
            [&] { return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES; },
            [&] { return FindFirstFileA(path, &data) != INVALID_HANDLE_VALUE; },
            [&] { return DeleteFileA(path) != 0; },
            [&] { return CreateDirectoryA(path, nullptr) != 0; },
            [&] { return RemoveDirectoryA(path) != 0; },
            [&] { return SetCurrentDirectoryA(path) != 0; },
            [&] { return CopyFileA(path, "X:\\t", 0) != 0; },
            [&] { return CFile().Open(path, CFile::modeRead) != 0; },
        };
        for (const auto& operation : operations)
            EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(operation()); }), error) << (path ? path : "null");
        drive.Write("source", "");
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(CopyFileA("X:\\source", path, 0)); }), error);
    }
    EXPECT_EQ(drive.Named(longest.c_str()).size(), 257u);
}

TEST_F(Path, LoopsAndUnreadableDirectoriesEndTheSearch)
{
    fs::create_symlink("loop2", drive.Path("loop1"));
    fs::create_symlink("loop1", drive.Path("loop2"));
    EXPECT_EQ(drive.Named("X:\\LOOP1"), "/loop1");
    EXPECT_EQ(drive.Named("X:\\LOOP1\\x\\y"), "/LOOP1/x/y"); // no directory, so no match for a head
    EXPECT_FALSE(PathFileExistsA("X:\\loop1\\x"));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_TRUE(PathFileExistsA("X:\\loop1"));

    drive.Write("closed/File", "");
    fs::permissions(drive.Path(), fs::perms::all);
    fs::permissions(drive.Path("closed"), fs::perms::owner_exec | fs::perms::others_exec);
    const auto errorOf = [](const std::function<bool()>& operation) { // of a user without special rights
        return static_cast<DWORD>(test::InFork([&] {
            if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) return 101;
            return operation() ? 0 : static_cast<int>(GetLastError());
        }));
    };
    const auto exists = [](const char* pszPath) { return [=] { return PathFileExistsA(pszPath) != 0; }; };
    EXPECT_EQ(errorOf(exists("X:\\closed\\File")), 0u); // a name can be used where it can't be listed
    EXPECT_EQ(errorOf(exists("X:\\closed\\file")), ERROR_FILE_NOT_FOUND);
    WIN32_FIND_DATAA data;
    EXPECT_EQ(errorOf([&] { return FindFirstFileA("X:\\closed\\*", &data) != INVALID_HANDLE_VALUE; }),
              ERROR_ACCESS_DENIED);
}

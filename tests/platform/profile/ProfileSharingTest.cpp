#include "internal/IniSnapshot.h"
#include "tests/platform/profile/IniFixture.h"

#include <sys/file.h>

namespace {

using test::Child;
using test::IniFile;

TEST(ProfileSharing, NoWriterLosesAnothersKeys)
{
    constexpr int kEach = 60;
    const IniFile ini;
    const std::array<std::string, 4> prefixes{"a", "b", "c", "d"};
    const auto write = [&](std::size_t writer) {
        int nFailed = 0;
        for (int n = 0; n < kEach; ++n) {
            const std::string number = std::to_string(n);
            nFailed += !ini.Set("S", (prefixes[writer] + number).c_str(), number.c_str());
        }
        return nFailed;
    };
    Child first([&] { return write(2); }), second([&] { return write(3); });
    test::RunThreads(2, [&](int t) { EXPECT_EQ(write(static_cast<std::size_t>(t)), 0); });
    for (Child* child : {&first, &second})
        EXPECT_EQ(child->Wait(), 0);
    for (const std::string& prefix : prefixes)
        for (int n = 0; n < kEach; ++n)
            ASSERT_EQ(ini.Get("S", (prefix + std::to_string(n)).c_str()), std::to_string(n)) << prefix;
    EXPECT_EQ(ini.Names(), std::set<std::string>{"test.ini"});
}

// Many values of one moment: what others write in between is not seen, what the thread itself writes is.
TEST(ProfileSharing, ASnapshotShowsOneStateOfAFile)
{
    const IniFile ini("[S]\nk=old\n"), other("[S]\nk=other\n");
    {
        const kx::profile::IniSnapshot snapshot;
        EXPECT_EQ(ini.Get("S", "k"), "old");
        ini.Replace("[S]\nk=new, and longer\n");
        {
            const kx::profile::IniSnapshot inner;
            EXPECT_EQ(ini.Get("S", "k"), "old");
        }
        EXPECT_EQ(ini.Get("S", "k"), "old");
        std::jthread([&] { EXPECT_EQ(ini.Get("S", "k"), "new, and longer"); }).join();
        EXPECT_EQ(other.Get("S", "k"), "other");
        EXPECT_EQ(ini.Get("S", "k"), "new, and longer"); // only the file read last is kept
        EXPECT_TRUE(ini.Set("S", "k", "mine"));
        EXPECT_EQ(ini.Get("S", "k"), "mine");
        ini.Replace("[S]\nk=last\n");
    }
    EXPECT_EQ(ini.Get("S", "k"), "last");
}

// Whatever moment the kill comes at: the file is whole, nothing piles up, and the next writer isn't held up.
TEST(ProfileSharing, KilledWriterLeavesTheOldFileOrTheNewOne)
{
    const std::string filler(20'000, '#');
    const auto whole = [&](char ch) {
        return "[S]\n" + filler + "\nk=" + std::string(10'000, ch) + "\n[T]\nlast=1\n";
    };
    const IniFile ini(whole('A'));
    for (int round = 0; round < 30; ++round) {
        ini.Set("S", "k", "start");
        Child child([&] {
            for (char ch = 'A';; ch ^= 'A' ^ 'B')
                ini.Set("S", "k", std::string(10'000, ch).c_str());
            return 0;
        });
        test::Await([&] { return ini.Get("S", "k") != "start"; });
        for (int n = 0; n < round; ++n)
            ASSERT_EQ(ini.Get("T", "last"), "1");
        child.Kill();
        EXPECT_EQ(child.Wait(), 128 + SIGKILL);

        ASSERT_THAT(ini.Text(), testing::AnyOf(whole('A'), whole('B')));
        ASSERT_THAT(ini.Names(), testing::IsSubsetOf({"test.ini", ".test.ini.kxnew"}));
    }
    EXPECT_TRUE(ini.Set("S", "k", "end"));
    EXPECT_EQ(ini.Names(), std::set<std::string>{"test.ini"});
}

// A process that was stopped in the midst, and another user's files, free or locked, which one may not
// remove.
TEST(ProfileSharing, NobodyHoldsAWriterUpForLong)
{
    const IniFile stopped("[S]\nk=v\n"), locked("[S]\nk=v\n"), left("[S]\nk=v\n");
    std::vector<int> parts;
    for (const IniFile* ini : {&stopped, &locked, &left}) {
        const std::string part = ini->Dir().Path(".test.ini.kxnew");
        parts.push_back(open(part.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ini == &locked ? 0600 : 0644));
        ASSERT_EQ(chmod(ini->Path().c_str(), 0666), 0);
        ASSERT_EQ(chmod(ini->Dir().Path().c_str(), 01777), 0);
        if (ini == &left && geteuid() == 0) continue;
        ASSERT_EQ(flock(parts.back(), LOCK_EX), 0);
    }
    {
        const test::Nobody nobody;
        const IniFile* const files[] = {&stopped, &locked, &left};
        test::RunThreads(3, [&](int t) {
            const auto begin = std::chrono::steady_clock::now();
            EXPECT_FALSE(files[t]->Set("S", "k", "w"));
            EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
            EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
            EXPECT_EQ(files[t]->Text(), "[S]\nk=v\n");
        });
    }
    for (const int part : parts)
        close(part);
    EXPECT_TRUE(stopped.Set("S", "k", "w"));
    EXPECT_EQ(stopped.Names(), std::set<std::string>{"test.ini"});
}

TEST(ProfileSharing, ThreadsReadWhileOneWrites)
{
    const IniFile ini("[S]\nsteady=value\nk=0\n");
    std::atomic<bool> bDone{false};
    test::RunThreads(4, [&](int t) {
        for (int n = 1; t == 0 && n <= 300; ++n) {
            EXPECT_TRUE(ini.Set("S", "k", std::to_string(n).c_str()));
            EXPECT_EQ(ini.Get("S", "k"), std::to_string(n));
        }
        if (t == 0) bDone = true;
        for (int last = 0, now = 0; !bDone; last = now) {
            ASSERT_EQ(ini.Get("S", "steady"), "value");
            now = std::stoi(ini.Get("S", "k"));
            ASSERT_GE(now, last);
        }
    });
}

} // namespace

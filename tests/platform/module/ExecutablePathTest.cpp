#include "include/platform/Error.h"
#include "include/platform/Module.h"
#include "tests/support/Test.h"

namespace {

// The host's choice of the executable's path during a scope.
struct Chosen : test::Fixed
{
    explicit Chosen(const std::string& path) { KXHost::SetExecutablePath(path); }
    ~Chosen() { KXHost::SetExecutablePath(""); }
};

std::string NameOfExecutable(DWORD nSize = MAX_PATH)
{
    std::string buffer(MAX_PATH + 1, '#');
    SetLastError(0);
    const DWORD length = GetModuleFileNameA(nullptr, buffer.data(), nSize);
    EXPECT_EQ(buffer.at(length), '\0');
    EXPECT_EQ(buffer.at(nSize), '#');
    return buffer.substr(0, length);
}

TEST(ExecutablePath, IsCutAtACharacterAndEnded)
{
    const Chosen chosen("/a/\xE4\xB8\xAD");
    EXPECT_EQ(NameOfExecutable(8), "C:\\a\\\xD6\xD0");
    EXPECT_EQ(GetLastError(), 0u);
    for (const DWORD size : {7u, 6u}) {
        EXPECT_EQ(NameOfExecutable(size), "C:\\a\\");
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    }
    EXPECT_EQ(NameOfExecutable(1), "");
    char untouched = '#';
    EXPECT_EQ(GetModuleFileNameA(nullptr, &untouched, 0), 0u);
    EXPECT_EQ(GetModuleFileNameA(nullptr, nullptr, 10), 0u);
    EXPECT_EQ(untouched, '#');
}

TEST(ExecutablePath, OneThatCantBeSaidFails)
{
    for (const char* path : {"relative/app", "/a\\b", "/bad\xFF"}) {
        const Chosen chosen(path);
        EXPECT_EQ(NameOfExecutable(), "");
        EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME) << path;
    }
    const Chosen chosen("/" + std::string(300, 'x'));
    EXPECT_EQ(NameOfExecutable(), "");
}

TEST(ExecutablePath, OfADeletedProgramStaysItsName)
{
    const test::TempDir dir;
    const auto run = [&](const std::string& name, bool deleted) {
        const std::string path = dir.Path(name);
        std::filesystem::copy_file(KX_TEST_BIN "/ExecutableChild", path);
        std::string up;
        for (int i = 0; i < 32; ++i)
            up += "../";
        return test::RunChild(up + path.substr(1), deleted ? std::vector{path} : std::vector<std::string>{});
    };
    const auto expected = [&](const char* pszName) { return std::string(dir.Win(pszName)); };
    for (const auto& [name, bGone] :
         {std::pair{"app", false}, {"gone", true}, {"odd (deleted)", false}, {"gone (deleted)", true}})
        EXPECT_EQ(run(name, bGone), expected(name)) << name;
}

} // namespace

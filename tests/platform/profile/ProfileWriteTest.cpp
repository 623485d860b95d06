#include "tests/platform/profile/IniFixture.h"

namespace {

using test::IniFile;
using std::literals::operator""sv;

TEST(ProfileWrite, ChangesItsLineOnly)
{
    const std::tuple<std::string_view, const char*, const char*, const char*, std::string> cases[] = {
        // In its place.
        {"[S]\nk=v\nl=w\n", "S", "k", "new", "[S]\nk=new\nl=w\n"},
        {"; top\r\n[ s ] ; x\r\n\tK\t=  v \t\r\n;k=c\r\n", "S", "k", "new",
         "; top\r\n[ s ] ; x\r\n\tK\t=  new\r\n;k=c\r\n"},
        {"[S]\nk=\n", "S", "k", "new", "[S]\nk=new\n"},
        {"[S]\nk=v", "S", "k", "new", "[S]\nk=new"},
        {"[S]\nk=1\nk=2\n", "S", "k", "new", "[S]\nk=new\nk=2\n"},
        {"[S]\nk=v\n", "S", "k", " \"as it stands\" ", "[S]\nk= \"as it stands\" \n"},
        {"[S]\nk =  1\n", "S", "k", " 2", "[S]\nk = 2\n"},
        {"[S]\nk=  1\n", "S", "k", "2", "[S]\nk=2\n"},
        // Behind the section's last key.
        {"[S]\nk=v\n\n; about T\n[T]\nk=t\n", "S", "l", "w", "[S]\nk=v\nl=w\n\n; about T\n[T]\nk=t\n"},
        {"\n[S]\n[Another one]\n", "S", "k", "v", "\n[S]\nk=v\n[Another one]\n"},
        {"\r\n[S]\r\nk=v", "S", "l", "w", "\r\n[S]\r\nk=v\r\nl=w\r\n"},
        {"[S]", "S", "k", "v", "[S]\r\nk=v\r\n"},
        {"[S]\n\x81\x41=1\n", "S", "\x81\x61", "2", "[S]\n\x81\x41=1\n\x81\x61=2\n"},
        {"[S]\na=1\n[T]\n[S]\nk=2\n", "S", "k", "v", "[S]\na=1\nk=v\n[T]\n[S]\nk=2\n"},
        // A new section.
        {"", "S", "k", "v", "[S]\r\nk=v\r\n"},
        {"\xEF\xBB\xBF", "S", "k", "v", "\xEF\xBB\xBF[S]\r\nk=v\r\n"},
        {"; top", "S", "k", "", "; top\r\n[S]\r\nk=\r\n"},
        {"k=v\n", "S", "k", "w", "k=v\n[S]\nk=w\n"},
        {"", "[", "#", "[x]", "[[]\r\n#=[x]\r\n"},
        {"", "", "a key; with [marks]", ";c", "[]\r\na key; with [marks]=;c\r\n"},
        {"", "\x81\x5D", "\x81\x41", "\"", "[\x81\x5D]\r\n\x81\x41=\"\r\n"},
        {"[S]\n\0\x01\xFF"sv, "T", "k", "v", std::string("[S]\n\0\x01\xFF\n[T]\nk=v\n"sv)},
        // Removal.
        {"[S]\nk=1\n;k\nK=2\nl=3\n[T]\nk=4\n[s]\nk=5", "S", "k", nullptr, "[S]\n;k\nl=3\n[T]\nk=4\n[s]\n"},
        {"[S]\nk=1\n\n; about T\n[T]\nk=2\n[S]\nk=3\n", "S", nullptr, "x", "\n; about T\n[T]\nk=2\n"},
        {"[S]\nk=v\n", "S", "none", nullptr, "[S]\nk=v\n"},
        {"[S]\nk=v\n", "none", nullptr, nullptr, "[S]\nk=v\n"},
    };
    for (const auto& [before, section, key, text, after] : cases) {
        const IniFile ini(before);
        EXPECT_TRUE(ini.Set(section, key, text));
        EXPECT_EQ(ini.Text(), after) << before;
    }
}

TEST(ProfileWrite, RefusesWhatWouldNotBeFoundAgain)
{
    const std::string before = "[S]\nk=v\n";
    const IniFile ini(before);
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"S", "k", "a\nb"}, {"S", "k", "a\rb"}, {"S\n", "k\nl", "v"}, {"S\nT", "k", "v"},
        {"a]b", "k", "v"},  {"\x81", "k", "v"}, {"S", "", "v"},       {"S", " ", "v"},
        {"S", ";k", "v"},   {"S", "[k", "v"},   {"S", "a=b", "v"},    {nullptr, "k", "v"}};
    for (const auto& [section, key, text] : cases) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(ini.Set(section, key, text));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    for (const char* file : {"", "Q:\\a.ini", "C:\\no such directory\\a.ini", "C:\\"}) {
        EXPECT_EQ(WritePrivateProfileStringA("S", "k", "v", file), 0) << file;
        EXPECT_NE(GetLastError(), ERROR_SUCCESS);
    }
    EXPECT_EQ(WritePrivateProfileStringA("S", "k", "v", nullptr), 0);
    EXPECT_EQ(ini.Text(), before);
    EXPECT_EQ(ini.Names(), std::set<std::string>{"test.ini"});
}

TEST(ProfileWrite, MakesAFileOnlyForSomethingToHold)
{
    const IniFile ini;
    EXPECT_TRUE(ini.Set("S", "k", nullptr));
    EXPECT_TRUE(ini.Set("S", nullptr, nullptr));
    EXPECT_EQ(ini.Names(), std::set<std::string>{});
    EXPECT_TRUE(ini.Set("S", "k", "v"));
    EXPECT_EQ(ini.Names(), std::set<std::string>{"test.ini"});
}

} // namespace

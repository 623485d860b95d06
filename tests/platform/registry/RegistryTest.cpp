#include "include/platform/Registry.h"
#include "tests/support/Nobody.h"
#include "tests/support/Test.h"

namespace {

constexpr DWORD kBoth = KEY_READ | KEY_WRITE;

class Registry : public testing::Test
{
protected:
    Registry() { KXHost::SetRegistryFile(m_dir.Path("registry.ini")); }
    ~Registry() override
    {
        for (const HKEY hKey : m_opened)
            RegCloseKey(hKey);
        KXHost::SetRegistryFile("");
    }

    // Null where it can't be had.
    HKEY Open(const char* pszSubKey, DWORD dwAccess = kBoth, HKEY hParent = HKEY_CURRENT_USER)
    {
        HKEY hKey = nullptr;
        return Keep(RegOpenKeyExA(hParent, pszSubKey, 0, dwAccess, &hKey), hKey);
    }
    HKEY Create(const char* pszSubKey, DWORD* pdwDisposition = nullptr, HKEY hParent = HKEY_CURRENT_USER)
    {
        HKEY hKey = nullptr;
        return Keep(RegCreateKeyExA(hParent, pszSubKey, 0, nullptr, 0, kBoth, nullptr, &hKey, pdwDisposition),
                    hKey);
    }
    HKEY Keep(long error, const HKEY& hKey)
    {
        EXPECT_EQ(error == ERROR_SUCCESS, hKey != nullptr);
        if (hKey) m_opened.push_back(hKey);
        return hKey;
    }
    static long Set(HKEY hKey, const char* pszName, std::string_view data, DWORD dwType = REG_BINARY)
    {
        return RegSetValueExA(hKey, pszName, 0, dwType, reinterpret_cast<const BYTE*>(data.data()),
                              static_cast<DWORD>(data.size()));
    }
    static std::optional<std::string> Get(HKEY hKey, const char* pszName, DWORD* pdwType = nullptr)
    {
        DWORD size = 0;
        if (RegQueryValueExA(hKey, pszName, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS) return {};
        std::string data(size, '#');
        EXPECT_EQ(
            RegQueryValueExA(hKey, pszName, nullptr, pdwType, reinterpret_cast<BYTE*>(data.data()), &size),
            ERROR_SUCCESS);
        return data;
    }

    test::TempDir m_dir;
    std::vector<HKEY> m_opened;
};

TEST_F(Registry, AKeyIsThereOnceItAndThoseAboveItAreMade)
{
    const auto disposition = [&](const char* pszSubKey, HKEY hParent = HKEY_CURRENT_USER) {
        DWORD dwDisposition = 0;
        Create(pszSubKey, &dwDisposition, hParent);
        return dwDisposition;
    };
    EXPECT_EQ(Open("Software\\Norvale\\Setup"), nullptr);
    EXPECT_EQ(disposition("Software\\Norvale\\Setup"), 1u);
    EXPECT_EQ(disposition("SOFTWARE\\norvale"), 2u);
    const HKEY hSoftware = Open("software");
    EXPECT_NE(Open("NORVALE\\setup\\", kBoth, hSoftware), nullptr);
    EXPECT_EQ(disposition("Other", hSoftware), 1u);
    EXPECT_NE(Open("Software\\Other"), nullptr);
    EXPECT_EQ(Open("Norvale"), nullptr);
    EXPECT_EQ(Open("Software\\Norv"), nullptr);
    // Without a name: the same key.
    EXPECT_EQ(Set(Open("", kBoth, hSoftware), "v", "1"), ERROR_SUCCESS);
    EXPECT_EQ(Get(Open(nullptr, kBoth, hSoftware), "V"), "1");
    EXPECT_EQ(Set(HKEY_CURRENT_USER, "v", "2"), ERROR_SUCCESS);
    EXPECT_EQ(Get(HKEY_CURRENT_USER, "v"), "2");
    EXPECT_EQ(Get(hSoftware, "v"), "1");
}

TEST_F(Registry, ValuesAndNamesOfAnyBytesComeBack)
{
    std::string all;
    for (int n = 0; n < 256; ++n)
        all += static_cast<char>(n);
    const std::vector<std::string> names{
        "Language", "",         "@",      " x ",         "a=b",
        ";c",       "[s]",      "\"q\"",  "%41",         "A",
        "\x81\x41", "\x81\x61", "a\r\nb", all.substr(1), std::string(16383, 'n')};
    for (const UINT page : {CP_GBK, CP_UTF8}) {
        const test::CodePage scope(page);
        const HKEY hKey = Create("\xC4\xE3\\\x81\x5C=]\\[k] ;%");
        ASSERT_NE(hKey, nullptr);
        for (const auto& name : names) {
            ASSERT_EQ(Set(hKey, name.c_str(), all + name), ERROR_SUCCESS);
            ASSERT_EQ(Set(hKey, "other", name + all), ERROR_SUCCESS);
        }
        // In the other code page the two names of a double byte differ by case only.
        for (const auto& name : names)
            EXPECT_EQ(Get(hKey, name.c_str()),
                      page == CP_UTF8 && name == "\x81\x41" ? all + "\x81\x61" : all + name);
    }
    EXPECT_EQ(Get(Create("k"), nullptr), std::nullopt);
    EXPECT_EQ(Set(Create("k"), nullptr, "default", REG_SZ), ERROR_SUCCESS);
    EXPECT_EQ(Get(Create("k"), ""), "default");
}

TEST_F(Registry, QueryTellsTypeAndSizeAndSparesASmallBuffer)
{
    const HKEY hKey = Create("k");
    ASSERT_EQ(Set(hKey, "v", {"abc", 4}, REG_SZ), ERROR_SUCCESS);
    ASSERT_EQ(Set(hKey, "empty", "", REG_DWORD), ERROR_SUCCESS);
    BYTE buffer[8] = {'#', '#', '#', '#', '#'};
    DWORD type = 0, size = 3;
    EXPECT_EQ(RegQueryValueExA(hKey, "V", nullptr, &type, buffer, &size), ERROR_MORE_DATA);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(RegQueryValueExA(hKey, "v", nullptr, nullptr, buffer, &size), ERROR_SUCCESS);
    EXPECT_EQ(std::string_view(reinterpret_cast<char*>(buffer), 5), std::string_view("abc\0#", 5));
    EXPECT_EQ(RegQueryValueExA(hKey, "v", nullptr, nullptr, buffer, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExA(hKey, "v", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExA(hKey, "w", nullptr, nullptr, buffer, &size), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Get(hKey, "empty", &type), "");
    EXPECT_EQ(type, REG_DWORD);
}

TEST_F(Registry, MisuseIsAnError)
{
    const HKEY hKey = Create("k");
    const HKEY hReader = Open("k", KEY_READ);
    const HKEY hWriter = Open("k", KEY_WRITE);
    EXPECT_EQ(Set(hReader, "v", "1"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Set(hWriter, "v", "1"), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExA(hWriter, "v", nullptr, nullptr, nullptr, nullptr), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Get(hReader, "v"), "1");

    EXPECT_EQ(RegSetValueExA(hKey, "v", 0, REG_SZ, nullptr, 1), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Set(hKey, "v", std::string(1024 * 1024 + 1, 'x')), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Set(hKey, std::string(16384, 'n').c_str(), "x"), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Set(hKey, "big", std::string(1024 * 1024, '\0')), ERROR_SUCCESS);
    EXPECT_EQ(Get(hKey, "big"), std::string(1024 * 1024, '\0'));
    EXPECT_EQ(Create(std::string(256, 'k').c_str()), nullptr);
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "k", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);

    HKEY hClosed = nullptr;
    {
        const test::NoLeak noLeak;
        ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "k", 0, kBoth, &hClosed), ERROR_SUCCESS);
        EXPECT_EQ(RegCloseKey(hClosed), ERROR_SUCCESS);
    }
    int nothing = 0;
    for (const HKEY hBad : {HKEY{}, hClosed, reinterpret_cast<HKEY>(&nothing)}) {
        HKEY hResult = hKey;
        EXPECT_EQ(RegCloseKey(hBad), ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegOpenKeyExA(hBad, "k", 0, KEY_READ, &hResult), ERROR_INVALID_HANDLE);
        EXPECT_EQ(hResult, nullptr);
        EXPECT_EQ(RegCreateKeyExA(hBad, "k", 0, nullptr, 0, kBoth, nullptr, &hResult, nullptr),
                  ERROR_INVALID_HANDLE);
        EXPECT_EQ(RegQueryValueExA(hBad, "v", nullptr, nullptr, nullptr, nullptr), ERROR_INVALID_HANDLE);
        EXPECT_EQ(Set(hBad, "v", "1"), ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
}

TEST_F(Registry, TheFileIsAllThatLasts)
{
    Set(Create("Software\\A b"), "Language", {"zh\0", 3}, REG_SZ);
    EXPECT_EQ(m_dir.Read("registry.ini"), "[Software]\r\n[Software\\A%20b]\r\nLanguage=1:zh%00\r\n");
    EXPECT_EQ(std::filesystem::status(m_dir.Path("registry.ini")).permissions(),
              std::filesystem::perms{0600});

    m_dir.Write("copy.ini",
                m_dir.Read("registry.ini") + "bad=1:%4\r\nworse=x:1\r\nworst=1\r\nhuge=4294967296:1\r\n");
    KXHost::SetRegistryFile(m_dir.Path("copy.ini"));
    const HKEY hKey = Open("Software\\A b");
    EXPECT_EQ(Get(hKey, "Language"), std::string("zh\0", 3));
    for (const char* name : {"bad", "worse", "worst", "huge"})
        EXPECT_EQ(Get(hKey, name), std::nullopt) << name;

    // A key that another process took away: gone for readers, made again by a writer.
    m_dir.Write("copy.ini", "");
    EXPECT_EQ(Get(hKey, "Language"), std::nullopt);
    EXPECT_EQ(Open("Software\\A b"), nullptr);
    EXPECT_EQ(Set(hKey, "Language", "en"), ERROR_SUCCESS);
    EXPECT_NE(Open("Software\\A b"), nullptr);
}

TEST_F(Registry, LiesInTheUsersConfigurationMadeAtTheFirstWrite)
{
    KXHost::SetRegistryFile("");
    const std::string old = getenv("XDG_CONFIG_HOME");
    const auto expectAt = [this](const char* pszDirectory) {
        EXPECT_EQ(Open("k", KEY_READ), nullptr);
        EXPECT_FALSE(m_dir.Exists(pszDirectory));
        EXPECT_NE(Create("k"), nullptr);
        EXPECT_EQ(std::filesystem::status(m_dir.Path(pszDirectory)).permissions(),
                  std::filesystem::perms{0700});
        EXPECT_TRUE(m_dir.Exists(std::string(pszDirectory) + "/registry.ini"));
    };
    setenv("XDG_CONFIG_HOME", m_dir.Path("config").c_str(), 1);
    expectAt("config/kxcommon");
    const std::string home = getenv("HOME");
    setenv("HOME", m_dir.Path().c_str(), 1);
    setenv("XDG_CONFIG_HOME", "relative", 1);
    expectAt(".config/kxcommon");
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_CONFIG_HOME", old.c_str(), 1);
}

TEST_F(Registry, ARelativeFileStaysWhereItIs)
{
    const auto old = std::filesystem::current_path();
    std::filesystem::current_path(m_dir.Path());
    KXHost::SetRegistryFile("new/relative.ini");
    std::filesystem::current_path(old);
    Set(Create("k"), "v", "1");
    EXPECT_TRUE(m_dir.Exists("new/relative.ini"));
}

TEST_F(Registry, WriteAccessNeedsAFileThatCanBeWritten)
{
    Set(Create("k"), "v", "1");
    std::filesystem::create_directory(m_dir.Path("directory"));
    KXHost::SetRegistryFile(m_dir.Path("directory"));
    EXPECT_EQ(Open("k"), nullptr);
    EXPECT_EQ(Create("k"), nullptr);
    KXHost::SetRegistryFile(m_dir.Path("registry.ini/below.ini"));
    EXPECT_EQ(Create("k"), nullptr);

    KXHost::SetRegistryFile(m_dir.Path("registry.ini"));
    chmod(m_dir.Path("registry.ini").c_str(), 0444);
    chmod(m_dir.Path().c_str(), 0555);
    std::optional<test::Nobody> nobody(std::in_place);
    HKEY hKey = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "k", 0, kBoth, &hKey), ERROR_ACCESS_DENIED);
    EXPECT_EQ(hKey, nullptr);
    EXPECT_EQ(Get(Open("k", KEY_READ), "v"), "1");
    nobody.reset();
    chmod(m_dir.Path().c_str(), 0700);
}

} // namespace

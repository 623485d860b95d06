#include "include/platform/Module.h"
#include "include/platform/Error.h"
#include "tests/platform/module/Bundles.h"
#include "tests/support/Damage.h"

namespace {

using namespace test;

std::string BytesOf(HMODULE hModule, const char* pszName, const char* pszType)
{
    const HRSRC found = FindResourceA(hModule, pszName, pszType);
    if (!found) return "none";
    const auto* data = static_cast<const char*>(LockResource(LoadResource(hModule, found)));
    return {data, SizeofResource(hModule, found)};
}

std::string StringOf(HMODULE hModule, UINT nId, int nSize = 64)
{
    std::string buffer(64, '#');
    const int length = LoadStringA(hModule, nId, buffer.data(), nSize);
    EXPECT_EQ(std::strlen(buffer.c_str()), static_cast<std::size_t>(length));
    return buffer.c_str();
}

// A bundle of these resources, open as a module.
class OpenModule : Fixed
{
public:
    explicit OpenModule(const Resources& resources, bool compressed = false)
    {
        CompileBundle(m_dir, resources, compressed);
        m_handle = LoadLibraryA(m_dir.Win("bundle"));
        EXPECT_NE(m_handle, nullptr);
    }
    ~OpenModule() { FreeLibrary(m_handle); }
    operator HMODULE() const { return m_handle; }
    CString Path() const { return m_dir.Win("bundle"); }

private:
    TempDir m_dir;
    HMODULE m_handle = nullptr;
};

TEST(Resource, IsFoundByNameNumberAndType)
{
    const OpenModule module(Resources{{"BITMAP/101", "pixels"},
                                      {"IMAGE/LOGO", "jpeg"},
                                      {"ICON/1", "icon"},
                                      {"10/7", "raw"},
                                      {"image/small", "low"},
                                      {"IMAGE/\xE4\xB8\xAD", "wide"},
                                      {"IMAGE/EMPTY", ""}});
    // The resource found, and the names and types that find it.
    const std::pair<std::string, std::vector<std::pair<const char*, const char*>>> cases[] = {
        {"pixels", {{MAKEINTRESOURCEA(101), RT_BITMAP}, {"#101", "#2"}, {"101", "BITMAP"}}},
        {"icon", {{MAKEINTRESOURCEA(1), RT_ICON}}},
        {"raw", {{MAKEINTRESOURCEA(7), MAKEINTRESOURCEA(10)}}},
        {"jpeg", {{"LOGO", "IMAGE"}, {"logo", "image"}}},
        {"low", {{"small", "image"}}},
        {"wide", {{"\xD6\xD0", "IMAGE"}}},
        {"", {{"EMPTY", "IMAGE"}}},
        {"none", {{MAKEINTRESOURCEA(102), RT_BITMAP}, {"#", "BITMAP"}, {"#101x", "BITMAP"}}},
        {"none", {{"#65637", "BITMAP"}}}, // 101 in 16 bits
        {"none", {{"", ""}, {nullptr, nullptr}, {"IMAGE/LOGO", ""}, {"/LOGO", "IMAGE"}, {"\xFF", "IMAGE"}}},
    };
    for (const auto& [bytes, names] : cases)
        for (const auto& [name, type] : names) {
            SetLastError(0);
            EXPECT_EQ(BytesOf(module, name, type), bytes)
                << &name - &names[0].first << " of " << names.size();
            EXPECT_EQ(GetLastError(), bytes == "none" ? ERROR_RESOURCE_NAME_NOT_FOUND : 0);
        }
    EXPECT_EQ(FindResourceA(module, "LOGO", "IMAGE"), FindResourceA(module, "logo", "IMAGE"));
}

TEST(Resource, CompressedComesOutWhole)
{
    const std::string text(100'000, 'x');
    const OpenModule module(Resources{{"DATA/1", text}, {"DATA/2", ""}}, true);
    EXPECT_EQ(BytesOf(module, "1", "DATA"), text);
    EXPECT_EQ(BytesOf(module, "2", "DATA"), "");
}

TEST(Resource, ForeignAndEndedHandlesAreRefused)
{
    const int before = KXHost::LiveHandles();
    const OpenModule other(Resources{{"T/A", "a"}});
    HRSRC stale = nullptr;
    HMODULE ended = nullptr;
    {
        const OpenModule module(Resources{{"T/A", "a"}});
        ended = module;
        stale = FindResourceA(module, "A", "T");
        EXPECT_EQ(KXHost::LiveHandles(), before + 2);
        char name[MAX_PATH];
        EXPECT_EQ(GetModuleFileNameA(module, name, MAX_PATH), static_cast<DWORD>(module.Path().GetLength()));
        EXPECT_EQ(module.Path(), name);
        EXPECT_EQ(SizeofResource(module, stale), 1u);
        EXPECT_EQ(SizeofResource(other, stale), 0u);
        EXPECT_EQ(LoadResource(nullptr, stale), nullptr);
    }
    EXPECT_EQ(KXHost::LiveHandles(), before + 1);
    for (const HMODULE bad : {ended, reinterpret_cast<HMODULE>(1), reinterpret_cast<HMODULE>(&stale)}) {
        SetLastError(0);
        EXPECT_EQ(FindResourceA(bad, "A", "T"), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        char name[8] = "#######";
        EXPECT_EQ(GetModuleFileNameA(bad, name, sizeof(name)), 0u);
        EXPECT_STREQ(name, "");
        EXPECT_EQ(LoadStringA(bad, 1, name, sizeof(name)), 0);
        EXPECT_EQ(FreeLibrary(bad), 0);
    }
    EXPECT_EQ(FreeLibrary(nullptr), 0);
    for (const HRSRC bad : {stale, HRSRC{}, reinterpret_cast<HRSRC>(&stale)}) {
        EXPECT_EQ(SizeofResource(other, bad), 0u);
        EXPECT_EQ(LoadResource(other, bad), nullptr);
        EXPECT_EQ(LockResource(bad), nullptr);
        EXPECT_EQ(FreeResource(bad), 0);
    }
}

TEST(Resource, NullModuleIsWhatTheProgramLinkedIn)
{
    EXPECT_EQ(BytesOf(nullptr, "A", "LINKED"), "none");
    {
        const LinkedIn resources(Resources{{"LINKED/A", "inside"}, {"STRING/55296", "bad date"}});
        EXPECT_EQ(BytesOf(nullptr, "A", "LINKED"), "inside");
        EXPECT_EQ(StringOf(nullptr, 55296), "bad date");
    }
    EXPECT_EQ(BytesOf(nullptr, "A", "LINKED"), "none");
    const LinkedIn again(Resources{{"LINKED/A", "anew"}});
    EXPECT_EQ(BytesOf(nullptr, "A", "LINKED"), "anew");
}

TEST(Resource, LookUpsBeginInTheCurrentModule)
{
    const LinkedIn resources(Resources{{"BITMAP/1", "program"}, {"BITMAP/2", "program"}});
    const OpenModule module(Resources{{"BITMAP/2", "module"}});
    const auto holder = [](WORD nId) { return AfxFindResourceHandle(MAKEINTRESOURCEA(nId), RT_BITMAP); };
    EXPECT_EQ(AfxGetResourceHandle(), nullptr);
    EXPECT_EQ(holder(2), nullptr);
    AfxSetResourceHandle(module);
    EXPECT_EQ(AfxGetModuleState()->m_hCurrentResourceHandle, module);
    EXPECT_EQ(holder(1), nullptr);
    EXPECT_EQ(holder(2), module);
    EXPECT_EQ(holder(3), module);
    AfxSetResourceHandle(nullptr);
}

TEST(StringTable, ComesInTheCodePageAndFitsTheBuffer)
{
    const OpenModule module(Resources{{"STRING/1", "\xE4\xB8\xAD\xE6\x96\x87"}, // two characters
                                      {"STRING/2", "line\r\n"},
                                      {"STRING/3", "a\n\n"},
                                      {"STRING/4", std::string("cut\0off", 7)},
                                      {"STRING/5", "\xFF!"},
                                      {"STRING/6", ""},
                                      {"STRING/65536", "wide"}});
    const std::string one = "\xD6\xD0", two = "\xD6\xD0\xCE\xC4";
    for (const auto& [size, text] :
         std::map<int, std::string>{{64, two}, {5, two}, {4, one}, {3, one}, {2, ""}, {1, ""}})
        EXPECT_EQ(StringOf(module, 1, size), text) << size;
    for (const auto& [id, text] : std::map<UINT, const char*>{
             {2, "line"}, {3, "a\n"}, {4, "cut"}, {5, "?!"}, {6, ""}, {7, ""}, {65536, "wide"}})
        EXPECT_EQ(StringOf(module, id), text) << id;
    EXPECT_EQ(StringOf(module, 2, 3), "li");
    {
        const CodePage utf8(CP_UTF8);
        EXPECT_EQ(StringOf(module, 1, 6), "\xE4\xB8\xAD");
    }
    char untouched = '#';
    EXPECT_EQ(LoadStringA(module, 2, &untouched, 0), 0);
    EXPECT_EQ(LoadStringA(module, 2, &untouched, -1), 0);
    EXPECT_EQ(LoadStringA(module, 2, nullptr, 10), 0);
    EXPECT_EQ(untouched, '#');
}

TEST(Module, OnlyASoundFileOpens)
{
    const TempDir dir;
    CompileBundle(dir, {{"T/A", "a"}});
    const auto error = [&](const char* pszPath) {
        SetLastError(0);
        EXPECT_EQ(LoadLibraryA(pszPath), nullptr);
        return GetLastError();
    };
    dir.Write("empty", "");
    dir.Write("text", std::string(5000, '#'));
    ASSERT_EQ(mkfifo(dir.Path("fifo").c_str(), 0600), 0);
    EXPECT_EQ(error(dir.Win("absent")), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(error(dir.Win("empty")), ERROR_RESOURCE_DATA_NOT_FOUND);
    EXPECT_EQ(error(dir.Win("text")), ERROR_RESOURCE_DATA_NOT_FOUND);
    for (const CString& path : {dir.Win("fifo"), dir.Win(), CString("C:\\dev\\zero")})
        EXPECT_EQ(error(path), ERROR_ACCESS_DENIED) << path;
    EXPECT_NE(error(""), 0u);
    EXPECT_NE(error(nullptr), 0u);
}

// A bundle that says untrue things of its resources, of which GLib would read past the end or which it would
// abort on: it isn't opened, or the resource has no bytes.
TEST(Module, LyingBundlesGiveNothing)
{
    const auto u32 = [](std::size_t n) { return std::string(reinterpret_cast<const char*>(&n), 4); };
    const auto open = [](const std::string& bundle) {
        const TempDir dir;
        dir.Write("bundle", bundle);
        return LoadLibraryA(dir.Win("bundle"));
    };
    const TempDir dir;
    const std::string plain = ReadFile(CompileBundle(dir, {{"T/A", "content"}}));
    const std::size_t value = plain.find("content") - 8, size = 8 + 8 + 7; // 8 + content and 0 + type
    const std::size_t slice = plain.find(u32(value) + u32(value + size));
    ASSERT_NE(slice, plain.npos);
    const std::map<std::size_t, std::vector<std::string>> lies{
        {value + 17, {"(uuas)", "(yyay)"}},
        {value, {u32(6), u32(0xFFFFFFFF)}},
        {slice + 4, {u32(value + size - 1), u32(value), u32(value - 8), u32(plain.size() + 1)}},
        {slice, {u32(value + 1)}},
        {slice - 2, {"x", "H"}}, // an entry of another kind, and a table in the table
        {slice - 8, {u32(999)}}, // its name lies outside
        {slice - 12, {u32(999)}},
        {8, {u32(1)}}, // another version of the format
        {0, {"raVGtnai"}},
        {16, {u32(26)}}, // the table isn't aligned
        {20, {u32(0), u32(plain.size() + 4)}}};
    EXPECT_NE(FreeLibrary(open(plain)), 0);
    for (const auto& [at, values] : lies)
        for (const std::string& bytes : values)
            EXPECT_EQ(open(std::string(plain).replace(at, bytes.size(), bytes)), nullptr)
                << at << ' ' << testing::PrintToString(bytes);
    std::string empty = plain; // not even the zero byte that follows a resource
    empty.replace(value, 15, u32(0xFFFFFFFF) + std::string("\0\0\0\0\0(uuay)", 11))
        .replace(slice + 4, 4, u32(value + 15));
    EXPECT_EQ(open(empty), nullptr);

    const std::string packed = ReadFile(CompileBundle(dir, {{"T/A", std::string(900, 'b')}}, true));
    const std::size_t length = packed.find(u32(900) + u32(1));
    ASSERT_NE(length, packed.npos);
    for (const std::size_t lie : {std::size_t{0}, std::size_t{899}, std::size_t{901}}) {
        const HMODULE module = open(std::string(packed).replace(length, 4, u32(lie)));
        ASSERT_NE(module, nullptr);
        EXPECT_EQ(BytesOf(module, "A", "T"), "none") << lie;
        FreeLibrary(module);
    }
    EXPECT_EQ(open(std::string(packed).replace(length, 4, u32(1 << 20))), nullptr);
}

// A damaged bundle gives nothing, or the bytes that it has; never more, and no complaint of the library
// that reads it, which this turns into the test's death.
TEST(Module, DamagedBundlesAreHarmless)
{
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(-1 & ~3));
    for (const bool compressed : {false, true}) {
        const TempDir dir;
        const std::string sound = ReadFile(CompileBundle(
            dir, {{"T/A", "content"}, {"T/B", std::string(50, 'b')}, {"STRING/1", "x"}}, compressed));
        const auto use = [&](const std::string& bundle) {
            dir.Write("bundle", bundle);
            const HMODULE module = LoadLibraryA(dir.Win("bundle"));
            for (const char* name : {"A", "B"})
                EXPECT_LT(BytesOf(module, name, "T").size(), 100'000u);
            StringOf(module, 1);
            return FreeLibrary(module) != 0;
        };
        ASSERT_TRUE(use(sound));
        ForEachCut(sound, use);
        ForEachLie(sound, use, {'\0', '\x7F', '\xFF'});
    }
}

TEST(Module, ThreadsMayLoadFindAndFreeAtOnce)
{
    const TempDir dir;
    CompileBundle(dir, {{"T/A", "content"}, {"STRING/1", "text"}});
    const OpenModule common(Resources{{"T/A", "common"}});
    const int before = KXHost::LiveHandles();
    RunThreads(4, [&](int) {
        for (int i = 0; i < 50; ++i) {
            const HMODULE module = LoadLibraryA(dir.Win("bundle"));
            EXPECT_EQ(BytesOf(module, "A", "T"), "content");
            EXPECT_EQ(StringOf(module, 1), "text");
            EXPECT_EQ(BytesOf(common, "A", "T"), "common");
            KXHost::SetExecutablePath("/app/client");
            char name[MAX_PATH];
            EXPECT_GT(GetModuleFileNameA(nullptr, name, MAX_PATH), 0u);
            EXPECT_NE(FreeLibrary(module), 0);
        }
    });
    KXHost::SetExecutablePath("");
    EXPECT_EQ(KXHost::LiveHandles(), before);
}

} // namespace

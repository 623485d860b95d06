#include "tests/support/Test.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* kAll = "HTTP, services, XML, letters, shell, pictures\n";
constexpr const char* kNone = "no HTTP, no services, no XML, no letters, no shell, no pictures\n";

// A copy of the library with its modules.
struct Doors : testing::Test
{
    void SetUp() override
    {
        const fs::path built = fs::path(KX_TEST_BIN).parent_path() / "lib";
        if (!fs::exists(built / "KXCommonClass/http.so"))
            GTEST_SKIP() << "the library is built without modules";
        fs::copy_file(built / "libKXCommonClass.so.1", m_dir.Path("libKXCommonClass.so.1"));
        fs::copy(built / "KXCommonClass", m_dir.Path("KXCommonClass"));
    }

    std::string Module(const char* pszName) const
    {
        return m_dir.Path(std::string("KXCommonClass/") + pszName);
    }

    // Puts another letter at the start of a text in a module's file, which begins with its 0.
    void Change(const char* pszName, std::string_view text, char ch) const
    {
        std::string bytes = test::ReadFile(Module(pszName));
        const auto place = bytes.find(text);
        ASSERT_NE(place, bytes.npos);
        bytes[place + 1] = ch;
        std::ofstream(Module(pszName), std::ios::binary) << bytes;
    }

    std::string Run(std::vector<std::string> args = {})
    {
        return test::RunChild("DoorChild", std::move(args),
                              {"LD_LIBRARY_PATH=" + m_dir.Path(""), "KX_DEBUG=1"});
    }

    test::TempDir m_dir;
};

TEST_F(Doors, OpenFromBesideTheLibraryForThreadsAtOnce)
{
    std::string text = Run({"threads"});
    std::size_t count = 0;
    for (auto at = text.find(kAll); at != text.npos; at = text.find(kAll, at + 1))
        ++count;
    EXPECT_EQ(count, 9u) << text;
    EXPECT_THAT(text, testing::Not(HasSubstr("module")));
    fs::remove_all(m_dir.Path("KXCommonClass"));
    text = Run({"threads"});
    EXPECT_THAT(text, HasSubstr(kNone));
    for (const std::string name : {"http", "letters", "pictures", "services", "shell", "x11", "xml"}) {
        const std::string line = name + ": the module can't be used: ";
        EXPECT_THAT(text, HasSubstr(line + Module((name + ".so").c_str()) + ": cannot open"));
        EXPECT_EQ(text.find(line), text.rfind(line)) << text; // said once
    }
}

TEST_F(Doors, StayShutForWhatIsNoModuleOfThisLibrary)
{
    fs::resize_file(Module("http.so"), 5000);
    fs::remove(Module("services.so"));
    fs::create_directory(Module("services.so"));
    fs::copy_file(m_dir.Path("libKXCommonClass.so.1"), Module("xml.so"),
                  fs::copy_options::overwrite_existing);
    const std::string text = Run();
    EXPECT_THAT(text, HasSubstr("no HTTP, no services, no XML, letters"));
    for (const char* pszName : {"http: ", "services: ", "xml: "})
        EXPECT_THAT(text, HasSubstr(std::string(pszName) + "the module can't be used: "));
}

TEST_F(Doors, StayShutForAnotherVersionAndWithoutALibrary)
{
    Change("http.so", {"\0" KX_VERSION "\0", sizeof KX_VERSION + 1}, '7');
    Change("xml.so", {"\0libxml2.so", 11}, 'n');
    const std::string text = Run();
    EXPECT_THAT(text, HasSubstr("no HTTP, services, no XML, letters"));
    EXPECT_THAT(text,
                HasSubstr("http: the module can't be used: it belongs to another version of the library\n"));
    EXPECT_THAT(text, HasSubstr("xml: the module can't be used: nibxml2.so.2: cannot open"));
}

} // namespace

#pragma once

#include "tests/support/Test.h"

namespace test {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

// A root of `C:` with an application's directory and the marker file, in which a child program crashes.
class CrashPlace
{
public:
    explicit CrashPlace(std::string app = "app") : m_app(std::move(app))
    {
        m_dir.MakeDir(m_app);
        m_dir.Write("nv_dbg_14.txt", "");
    }

    // Puts the library's reporter there, or under another name.
    const CrashPlace& RealReporter(const char* pszName = "KXCrashReport.exe") const
    {
        std::filesystem::create_symlink(KX_TEST_BIN "/KXCrashReport.exe", Path(pszName));
        return *this;
    }

    Child Start(const std::string& how, std::vector<std::string> env = {}, const std::string& what = {}) const
    {
        // AddressSanitizer has handlers of its own, which are no ordinary course.
        const char* pszOptions = std::getenv("ASAN_OPTIONS");
        env.push_back("ASAN_OPTIONS=" + std::string(pszOptions ? pszOptions : "") +
                      ":handle_segv=0:handle_sigfpe=0");
        return {"CrashChild", {m_dir.Path(), how, what}, std::move(env)};
    }
    int Crash(const std::string& how, std::vector<std::string> env = {}, const std::string& what = {}) const
    {
        return Start(how, std::move(env), what).Wait();
    }

    // A file of the application's.
    std::string Path(const std::string& name) const { return m_dir.Path(m_app + "/" + name); }
    // The one file of this kind in the directory of dumps; empty for none or several.
    std::string Dump(const char* pszExtension) const
    {
        std::vector<std::string> found;
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(Path("dumps"), error))
            if (entry.path().extension() == pszExtension) found.push_back(entry.path().native());
        return found.size() == 1 ? found[0] : "";
    }
    std::string Report() const { return ReadFile(Dump(".txt")); }
    const TempDir& Dir() const { return m_dir; }

private:
    TempDir m_dir;
    std::string m_app;
};

struct CrashTest : testing::Test
{
#if defined(__SANITIZE_THREAD__)
    void SetUp() override
    {
        GTEST_SKIP() << "ThreadSanitizer puts handlers of its own before a crash's";
    }
#endif
};

} // namespace test

#pragma once

#include "include/platform/Error.h"
#include "include/platform/Profile.h"
#include "tests/support/Nobody.h"
#include "tests/support/Test.h"

#include <time.h>

namespace test {

// An INI file in a directory of its own, read and written through the profile calls.
class IniFile
{
public:
    IniFile() = default;
    explicit IniFile(std::string_view text) { Replace(text); }

    // Writes in place, like another program.
    void Replace(std::string_view text) const { m_dir.Write("test.ini", text); }
    std::string Text() const { return m_dir.Read("test.ini"); }
    std::string Get(const char* pszSection, const char* pszKey, const char* pszDefault = "<none>") const
    {
        std::array<char, 1024> value;
        const DWORD length = GetPrivateProfileStringA(pszSection, pszKey, pszDefault, value.data(),
                                                      static_cast<DWORD>(value.size()), Win());
        return {value.data(), length};
    }
    bool Set(const char* pszSection, const char* pszKey, const char* pszText) const
    {
        return WritePrivateProfileStringA(pszSection, pszKey, pszText, Win()) != 0;
    }

    CString Win() const { return m_dir.Win("test.ini"); }
    std::string Path() const { return m_dir.Path("test.ini"); }
    const TempDir& Dir() const { return m_dir; }
    // The names of all that lies in the directory.
    std::set<std::string> Names() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_dir.Path()))
            names.insert(entry.path().filename().string());
        return names;
    }

private:
    TempDir m_dir;
};

// Waits until the clock's tick of the file's last change is well over, so that it may be known by its stamp.
inline void LetSettle(const std::string& path)
{
    const auto nanoseconds = [](const timespec& time) { return time.tv_sec * 1'000'000'000 + time.tv_nsec; };
    struct stat status = {};
    stat(path.c_str(), &status);
    for (timespec now{}; nanoseconds(now) - nanoseconds(status.st_ctim) < 50'000'000;)
        clock_gettime(CLOCK_REALTIME, &now);
}

} // namespace test

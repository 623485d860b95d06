#pragma once

#include "KXFileSystem.h"
#include "KXLanResManager.h"
#include "tests/support/Host.h"
#include "tests/support/TempDir.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>

namespace test {

// The directory of the executable, as far as the library is told: one for the process, made before the file
// system's singleton looks.
inline const TempDir& AppDir()
{
    static const TempDir dir;
    static const bool told = [] {
        KXHost::SetExecutablePath(dir.Path("app"));
        return CKXFileSystem::GetInstancePtr() != nullptr;
    }();
    EXPECT_TRUE(told);
    return dir;
}

// A language root of its own below it, for one test.
class LanguageTree
{
public:
    LanguageTree() { AppDir().MakeDir(Name()); }

    void Add(const std::string& id, const std::string& name, const std::string& data = "") const
    {
        AppDir().Write(Name() + "/" + id + "/Lan.ini", "[Language]\r\nLanguage=" + name + "\r\n");
        AppDir().Write(Name() + "/" + id + "/Data.txt", data);
    }
    std::string Name() const { return "lans" + std::to_string(m_number); }
    std::string Path(const std::string& relative) const { return Name() + "/" + relative; }

private:
    inline static int s_last = 0;
    int m_number = ++s_last;
};

} // namespace test

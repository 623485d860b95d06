#pragma once

#include "KXLanResManager.h"
#include "tests/support/AppDir.h"
#include "tests/support/Host.h"

namespace test {

// A language root of its own in the directory of the executable, for one test.
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

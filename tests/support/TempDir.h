#pragma once

#include "include/platform/String.h"
#include "tests/support/Fixed.h"
#include "tests/support/Standard.h"

namespace test {

// A directory of its own below the system's temporary one, removed with all it holds at the end.
class TempDir : Fixed
{
public:
    TempDir();
    ~TempDir();

    // The Linux path, without a trailing slash.
    const std::string& Path() const { return m_path; }
    std::string Path(std::string_view relative) const;
    // The same as a path of the library: `C:\tmp\...`; `relative` is in backslashes.
    CString Win(std::string_view relative = {}) const;

    // Make a directory, or a file with its directories, by a relative Linux path.
    void MakeDir(std::string_view relative) const;
    std::string Write(std::string_view relative, std::string_view content) const;
    std::string Read(std::string_view relative) const;
    bool Exists(std::string_view relative) const;

private:
    std::string m_path;
};

// Lets no file of this process grow beyond a size for the scope's length, as a full disk does.
class FileLimit : Fixed
{
public:
    explicit FileLimit(rlim_t nBytes);
    ~FileLimit();

private:
    rlimit m_old{};
    void (*m_handler)(int);
};

// A whole file; empty if it can't be read.
std::string ReadFile(const std::string& path);

} // namespace test

#pragma once

#include "include/platform/String.h"
#include "tests/support/Standard.h"

namespace test {

// A whole file; empty if it can't be read.
inline std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A directory of its own below the system's temporary one, removed with all it holds at the end.
class TempDir : Fixed
{
public:
    TempDir()
    {
        if (!mkdtemp(m_path.data())) throw std::runtime_error("no temporary directory");
    }
    ~TempDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    // The Linux path, without a trailing slash.
    const std::string& Path() const { return m_path; }
    std::string Path(std::string_view relative) const { return m_path + "/" + std::string(relative); }
    // The same as a path of the library: `C:\tmp\...`; `relative` is in backslashes.
    CString Win(std::string_view relative = {}) const
    {
        std::string path = "C:" + m_path;
        std::replace(path.begin(), path.end(), '/', '\\');
        if (!relative.empty()) path.append("\\").append(relative);
        return CString(path.c_str());
    }

    // Make a directory, or a file with its directories, by a relative Linux path.
    void MakeDir(std::string_view relative) const { std::filesystem::create_directories(Path(relative)); }
    std::string Write(std::string_view relative, std::string_view content) const
    {
        const std::filesystem::path path = Path(relative);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }
    std::string Read(std::string_view relative) const { return ReadFile(Path(relative)); }
    bool Exists(std::string_view relative) const
    {
        return std::filesystem::exists(std::filesystem::symlink_status(Path(relative)));
    }

private:
    std::string m_path = std::filesystem::temp_directory_path() / "kxtest-XXXXXX";
};

// Lets no file of this process grow beyond a size for the scope's length, as a full disk does.
class FileLimit : Fixed
{
public:
    explicit FileLimit(rlim_t nBytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit lower{nBytes, m_old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &lower);
    }
    ~FileLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_old{};
    void (*m_handler)(int);
};

} // namespace test

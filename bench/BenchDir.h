#pragma once

#include "include/platform/String.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdlib.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace bench {

// A temporary directory for the length of the program, which its forks leave; in memory where the disk's time
// is nothing of ours.
class BenchDir
{
public:
    enum class On
    {
        Disk,
        Memory
    };

    explicit BenchDir(On on = On::Disk)
    {
        const std::filesystem::path memory = "/dev/shm";
        const bool bMemory = on == On::Memory && std::filesystem::is_directory(memory);
        const auto root = bMemory ? memory : std::filesystem::temp_directory_path();
        std::string pattern = (root / "kxbench-XXXXXX").string();
        m_path = mkdtemp(pattern.data());
    }
    BenchDir(const BenchDir&) = delete;
    BenchDir& operator=(const BenchDir&) = delete;
    ~BenchDir()
    {
        std::error_code ignored;
        if (getpid() == m_owner) std::filesystem::remove_all(m_path, ignored);
    }

    std::string Path(std::string_view name) const { return m_path + "/" + std::string(name); }
    CString Win(std::string_view name) const
    {
        std::string path = "C:" + Path(name);
        std::replace(path.begin(), path.end(), '/', '\\');
        return CString(path.c_str());
    }
    std::string Write(std::string_view name, std::string_view content) const
    {
        const std::string path = Path(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary)
            .write(content.data(), static_cast<std::streamsize>(content.size()));
        return path;
    }

private:
    pid_t m_owner = getpid();
    std::string m_path;
};

inline const BenchDir& Dir()
{
    static const BenchDir dir;
    return dir;
}

} // namespace bench

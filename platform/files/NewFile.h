#pragma once

#include "platform/UniqueFd.h"

#include <string>

namespace kx {

// A file in the making, under a hidden name beside the one that it is for; removed unless it is published.
class NewFile
{
public:
    // `errno` tells why the directory takes no file.
    explicit NewFile(const std::string& directory);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    explicit operator bool() const noexcept { return static_cast<bool>(m_fd); }
    int Fd() const noexcept { return m_fd.Get(); }

    // Gives it its name, in the directory where it is. An existing file goes in the same moment, or, unless
    // it may be replaced, stays and makes this fail with EEXIST. `errno` on failure.
    bool Publish(const std::string& path, bool bReplace);

private:
    std::string m_path;
    UniqueFd m_fd;
};

} // namespace kx

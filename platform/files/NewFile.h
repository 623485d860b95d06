#pragma once

#include "platform/UniqueFd.h"

#include <string>

namespace kx {

// A file in the making, in the directory of the one that it is for; removed unless it is published. It has no
// name as long as it is written, where the file system allows that, so that nothing is left of it by a
// process that is killed; else a hidden one.
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
    bool Hide();

    const std::string m_directory;
    std::string m_path; // empty without a name
    UniqueFd m_fd;
};

} // namespace kx

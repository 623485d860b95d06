#pragma once

#include "include/platform/Types.h"
#include "platform/profile/FileStamp.h"

#include <cstddef>
#include <string>

namespace kx::profile {

// A larger file counts as unreadable, and none is made larger.
inline constexpr std::size_t kMaxFile = 16 * 1024 * 1024;

// A file's text with the stamp that it had before it was read.
struct FileText
{
    FileStamp stamp;
    bool bSettled = false;
    std::string text;
};

// Reads a regular file by its Linux path; a pipe or a device is neither opened nor waited for. An ERROR_...
// code, ERROR_FILE_NOT_FOUND where nothing has that name.
DWORD ReadFileText(const std::string& path, FileText& file);

} // namespace kx::profile

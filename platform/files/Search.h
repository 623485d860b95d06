#pragma once

#include "include/platform/FileSystem.h"
#include "platform/LiveHandles.h"
#include "platform/files/Directory.h"
#include "platform/files/Path.h"

#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace kx::path {

// An open search: the names that matched when it was opened, each looked at when it is delivered. Any thread.
class Search
{
public:
    explicit Search(const Pattern& pattern);

    // Why the directory can't be searched; ERROR_SUCCESS otherwise.
    DWORD Error() const noexcept { return m_error; }
    // Delivers the next entry; false at the end.
    bool Next(WIN32_FIND_DATAA& data);

private:
    void Collect(const std::string& pattern);

    std::mutex m_lock;
    LiveHandle m_live;
    Directory m_directory; // open only where there are wildcards: one entry needs no list
    std::string m_prefix;  // what makes that entry's name a path
    DWORD m_error = ERROR_SUCCESS;
    std::vector<std::string> m_names; // UTF-8
    std::size_t m_next = 0;
};

} // namespace kx::path

#pragma once

#include "platform/UniqueFd.h"
#include "platform/files/Directory.h"

#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <unordered_set>
#include <utility>

namespace kx::files {

// A directory by what stays the same however it is spelled.
using DirectoryId = std::pair<dev_t, ino_t>;

// Which names a large directory may hold, kept up to date by the system's notices. A new file's name isn't
// there in any case, and a walk through all names for each would make the filling of a directory quadratic.
// Names are kept by the hash of their folded form, so that a million takes some 40 MB. Not for several
// threads at once.
class LargeDirectory
{
public:
    // Null where changes might go unnoticed, as on a file system that others change too.
    static std::unique_ptr<LargeDirectory> Open(const std::string& directory);

    const DirectoryId& Id() const noexcept { return m_id; }
    // Whether an entry may have that name but for the case, by all changes up to now. Nothing is known any
    // more once `bLost` becomes true.
    bool MayHold(std::string_view folded, bool& bLost);

private:
    explicit LargeDirectory(const DirectoryId& id) noexcept : m_id(id) {}
    bool CatchUp(bool bRemovals);
    void Add(std::string_view name);
    void Remove(std::string_view name);

    DirectoryId m_id;
    UniqueFd m_notices;
    pid_t m_process = 0; // the child of a fork shares the notices and leaves them to its parent
    std::unordered_multiset<std::size_t> m_names;
};

} // namespace kx::files

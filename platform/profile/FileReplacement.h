#pragma once

#include "include/platform/Types.h"
#include "platform/UniqueFd.h"

#include <string>
#include <string_view>
#include <sys/types.h>

namespace kx::profile {

// One writer's turn at a file, which it replaces as a whole.
//
// The new text is written into a file of a fixed name beside the old one, which is then renamed over it. That
// very file is the lock: a writer's turn begins when it holds the lock of the file that has the name, and
// ends when the name is gone. The kernel frees the lock of a writer that is killed, and the next one uses the
// file that it left, so there is never more than one.
class FileReplacement
{
public:
    FileReplacement() = default;
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    // Ends the turn; without a Commit the old file stays.
    ~FileReplacement();

    // Waits for its turn at the file, by its Linux path. A link is followed. A new file gets `mode`, less the
    // process's mask; an old one passes its mode and, where that is allowed, its owner on. An ERROR_... code.
    DWORD Begin(const std::string& path, mode_t mode);

    // The file itself, behind all links.
    const std::string& Target() const noexcept { return m_target; }

    // Puts the text in the file's place; once. It is on the disk before the old one goes. An ERROR_... code,
    // the old file then being in place.
    DWORD Commit(std::string_view text);

private:
    enum class Turn
    {
        Ours,
        Again,
        Failed, // see errno
    };

    Turn TryBegin(mode_t mode);
    Turn Retry() noexcept;
    void PassOnStatus();

    std::string m_target;
    std::string m_name; // of the lock and new text
    UniqueFd m_lock;
    bool m_bOurs = false;
    int m_retries = 0;
};

} // namespace kx::profile

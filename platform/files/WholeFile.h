#pragma once

#include "include/KXExport.h"
#include "include/platform/Error.h"
#include "platform/UniqueFd.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <sys/stat.h>

// Files read and replaced as a whole. Paths are Linux paths; results are ERROR_... codes, ERROR_SUCCESS
// included. Any thread.

namespace kx::files {

struct FileContent
{
    struct stat status = {}; // as the file was before it was read
    std::string bytes;
};

// Opens a regular file for reading. A pipe or a device is neither opened nor waited for: EACCES. No file
// descriptor on failure, with the reason in `errno`.
UniqueFd OpenRegularFile(const std::string& path, struct stat& status);

// Reads a regular file from its beginning to its end, whatever size it is said to have. A file of more than
// `limit` bytes gives ERROR_ACCESS_DENIED.
KX_API DWORD ReadWholeFile(const std::string& path, std::size_t limit, FileContent& content);
DWORD ReadWholeFile(int fd, std::size_t limit, FileContent& content);

// Reads the first `count` bytes of a regular file, or what there is of them.
KX_API DWORD ReadFileHead(const std::string& path, std::size_t count, FileContent& content);

// Writes all of it, however many calls that takes; the errno, 0 for success.
int WriteAll(int fd, const void* pBuf, std::size_t nCount) noexcept;

// One writer's turn at a file, which it replaces as a whole: at any moment of a kill, a full disk or a lack
// of memory the old file stands there or the new one.
//
// The new content is written into a part file of a fixed hidden name beside the old file, and then renamed
// over it. The part file is also the lock: a turn begins when the writer holds the flock of the file that has
// the name, and ends when the name is gone. The kernel frees the flock of a killed writer, and the next
// writer removes the part file that was left.
class KX_API FileReplacement
{
public:
    enum class Existing
    {
        Replaced, // a link is followed and stays
        Refused,  // whatever has the name: ERROR_ALREADY_EXISTS
    };

    static constexpr std::chrono::milliseconds kWait{5000};

    explicit FileReplacement(Existing existing = Existing::Replaced,
                             std::chrono::milliseconds wait = kWait) noexcept
        : m_existing(existing), m_wait(wait)
    {
    }
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    // Ends the turn; without a Commit the old file stays.
    ~FileReplacement();

    // Waits for its turn at the file; ERROR_SHARING_VIOLATION when that takes longer than the wait. A new
    // file gets `mode` less the process's mask. An existing file passes its mode on, and its owner, group and
    // access list where that is allowed; where its group can't be kept, the members of the new one get no
    // more than everyone.
    DWORD Begin(const std::string& path, mode_t mode);

    // The file itself, behind all links.
    const std::string& Target() const noexcept { return m_target; }

    // The part file, empty at first, open for reading and writing.
    int Fd() const noexcept { return m_part.Get(); }

    // Appends to the part file; false for a failure, which Commit then gives too.
    bool Write(const void* pBuf, std::size_t nCount) noexcept;

    // Puts the part file in the file's place, once, after its content is on the disk unless `bSync` is false,
    // and ends the turn. On failure the old file stays.
    DWORD Commit(bool bSync = true);

private:
    enum class Turn
    {
        Ours,
        Again,  // what had the name is gone
        Later,  // another has it
        Failed, // see errno
    };

    DWORD CheckTarget(mode_t& mode) const;
    Turn TryBegin(mode_t mode);
    Turn TryClear();
    bool HasName() const noexcept;
    void TakeOverStatus();
    bool Publish() const noexcept;
    void End() noexcept;

    Existing m_existing;
    std::chrono::milliseconds m_wait;
    std::string m_target;
    std::string m_name; // of the part file
    UniqueFd m_part;
    UniqueFd m_directory; // to be synced, where it may be read
    bool m_bOurs = false;
    mode_t m_mode = 0; // to be set at the end; 0 for none
    int m_errno = 0;   // of the first write that failed
};

// Replaces or makes a file; `mode` as for FileReplacement::Begin.
KX_API DWORD ReplaceWholeFile(const std::string& path, std::string_view bytes, mode_t mode);

// Makes the directories above a file, as far as they are missing and can be made.
KX_API void MakeDirectoriesAbove(const std::string& file, mode_t mode);

} // namespace kx::files

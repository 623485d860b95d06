#include "platform/files/NewFile.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kx {

namespace {

bool Rename(const std::string& from, const std::string& to, bool bReplace)
{
    if (!bReplace) {
        if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
        if (errno != EINVAL && errno != ENOSYS) return false;
        struct stat info; // a file system that can't do it in one step
        errno = EEXIST;
        if (lstat(to.c_str(), &info) == 0) return false;
    }
    return rename(from.c_str(), to.c_str()) == 0;
}

constexpr char kHidden[] = "/.kx-copy-";

// Where a process finds its open file, though that may have no name.
std::string OpenPath(int fd)
{
    return "/proc/self/fd/" + std::to_string(fd);
}

bool Link(const std::string& from, const std::string& to)
{
    return linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

// A file without a name, which the system removes with the process; none where the directory can't have one
// or it couldn't be named later.
UniqueFd OpenUnnamed(const std::string& directory)
{
    UniqueFd fd(open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
    return fd && access(OpenPath(fd.Get()).c_str(), F_OK) == 0 ? std::move(fd) : UniqueFd();
}

} // namespace

NewFile::NewFile(const std::string& directory) : m_directory(directory), m_fd(OpenUnnamed(directory))
{
    if (m_fd) return;
    m_path = directory + kHidden + "XXXXXX";
    m_fd = UniqueFd(mkostemp(m_path.data(), O_CLOEXEC));
    if (!m_fd) m_path.clear();
}

NewFile::~NewFile()
{
    if (!m_path.empty()) unlink(m_path.c_str());
}

// Only a file with a name can take another one's place.
bool NewFile::Hide()
{
    static std::atomic<unsigned> counter{0};
    const std::string stem = m_directory + kHidden + std::to_string(getpid()) + '-';
    do {
        m_path = stem + std::to_string(counter++);
        if (Link(OpenPath(m_fd.Get()), m_path)) return true;
    } while (errno == EEXIST);
    m_path.clear();
    return false;
}

bool NewFile::Publish(const std::string& path, bool bReplace)
{
    if (m_path.empty()) {
        if (Link(OpenPath(m_fd.Get()), path)) return true;
        if (errno != EEXIST || !bReplace || !Hide()) return false;
    }
    if (!Rename(m_path, path, bReplace)) return false;
    m_path.clear();
    return true;
}

} // namespace kx

#include "platform/files/NewFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

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

} // namespace

NewFile::NewFile(const std::string& directory)
    : m_path(directory + "/.kx-copy-XXXXXX"), m_fd(mkostemp(m_path.data(), O_CLOEXEC))
{
    if (!m_fd) m_path.clear();
}

NewFile::~NewFile()
{
    if (!m_path.empty()) unlink(m_path.c_str());
}

bool NewFile::Publish(const std::string& path, bool bReplace)
{
    if (!Rename(m_path, path, bReplace)) return false;
    m_path.clear();
    return true;
}

} // namespace kx

#include "platform/services/systemd/UnitStore.h"

#include "include/platform/Services.h"
#include "platform/Errno.h"
#include "platform/files/NewFile.h"
#include "platform/files/ReadFile.h"
#include "platform/files/WholeFile.h"
#include "platform/services/systemd/UnitText.h"

#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <systemd/sd-path.h>
#include <unistd.h>

namespace kx::systemd {

namespace {

constexpr const char* kMachineUnits = "/usr/local/lib/systemd/system";
constexpr const char* kDropIn = "50-kx-description.conf";

struct Free
{
    void operator()(char* text) const noexcept { std::free(text); }
};

std::string UsualDirectory()
{
    if (geteuid() == 0) return kMachineUnits;
    char* found = nullptr;
    const int result = sd_path_lookup(SD_PATH_USER_SHARED, "systemd/user", &found);
    const std::unique_ptr<char, Free> owned(found);
    return result < 0 || !found ? "" : found;
}

void MakeDirectories(const std::string& directory)
{
    for (std::size_t slash = 1; slash != directory.npos;) {
        slash = directory.find('/', slash + 1);
        mkdir(directory.substr(0, slash).c_str(), 0755);
    }
}

DWORD Write(const std::string& directory, const std::string& path, std::string_view text, bool bReplace)
{
    MakeDirectories(directory);
    NewFile file(directory);
    if (!file) return errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno);
    if (const int error = WriteAll(file.Fd(), text.data(), text.size())) return ErrorFromErrno(error);
    const bool bDone =
        fchmod(file.Fd(), 0644) == 0 && fdatasync(file.Fd()) == 0 && file.Publish(path, bReplace);
    return bDone ? ERROR_SUCCESS : ErrorFromErrno(errno);
}

bool IsRegular(const std::string& path) noexcept
{
    struct stat info = {};
    return lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

DWORD RemoveFile(const std::string& path) noexcept
{
    return unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR ? ERROR_SUCCESS
                                                                            : ErrorFromErrno(errno);
}

} // namespace

UnitStore::UnitStore(const std::string& directory)
    : m_directory(directory.empty() ? UsualDirectory() : directory)
{
}

DWORD UnitStore::Create(const std::string& unit, std::string_view text) const
{
    if (m_directory.empty()) return ERROR_PATH_NOT_FOUND;
    const DWORD error = Write(m_directory, Path(unit), text, false);
    return error == ERROR_ALREADY_EXISTS ? ERROR_SERVICE_EXISTS : error;
}

bool UnitStore::Has(const std::string& unit) const
{
    const std::string path = Path(unit);
    return IsRegular(path) && ReadFile(path, kMark.size()) == kMark;
}

DWORD UnitStore::Remove(const std::string& unit) const
{
    if (const DWORD error = Undescribe(unit)) return error;
    return RemoveFile(Path(unit));
}

DWORD UnitStore::Describe(const std::string& unit, std::string_view text) const
{
    if (m_directory.empty()) return ERROR_PATH_NOT_FOUND;
    const std::string directory = Path(unit) + ".d";
    return Write(directory, directory + "/" + kDropIn, text, true);
}

DWORD UnitStore::Undescribe(const std::string& unit) const
{
    const std::string directory = Path(unit) + ".d";
    if (const DWORD error = RemoveFile(directory + "/" + kDropIn)) return error;
    rmdir(directory.c_str()); // stays where others have put something into it
    return ERROR_SUCCESS;
}

} // namespace kx::systemd

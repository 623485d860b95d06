#include "platform/services/systemd/UnitStore.h"

#include "include/platform/Services.h"
#include "platform/Errno.h"
#include "platform/files/WholeFile.h"
#include "platform/services/systemd/UnitText.h"

#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <systemd/sd-path.h>
#include <unistd.h>

namespace kx::services::systemd {

namespace {

constexpr const char* kMachineUnits = "/usr/local/lib/systemd/system";
constexpr const char* kDropIn = "50-kx-description.conf";
constexpr mode_t kMode = 0644;

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

DWORD Write(const std::string& path, std::string_view text, files::FileReplacement::Existing existing)
{
    files::MakeDirectoriesAbove(path, 0755);
    files::FileReplacement file(existing);
    if (const DWORD error = file.Begin(path, kMode)) return error;
    fchmod(file.Fd(), kMode); // whatever the process's mask: other users ask for it too
    file.Write(text.data(), text.size());
    return file.Commit();
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

DWORD Enable(Bus& bus, const std::string& unit)
{
    Message reply;
    if (const DWORD error =
            bus.Call(&reply, kManagerPath, kManager, "EnableUnitFiles", "asbb", 1, unit.c_str(), 0, 0))
        return error;
    int bSaysWhen = 0;
    if (sd_bus_message_read_basic(reply.get(), 'b', &bSaysWhen) <= 0) return ERROR_GEN_FAILURE;
    return bSaysWhen ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
}

DWORD Disable(Bus& bus, const std::string& unit)
{
    return bus.Call(nullptr, kManagerPath, kManager, "DisableUnitFiles", "asb", 1, unit.c_str(), 0);
}

DWORD Unmask(Bus& bus, const std::string& unit)
{
    return bus.Call(nullptr, kManagerPath, kManager, "UnmaskUnitFiles", "asb", 1, unit.c_str(), 0);
}

} // namespace

UnitStore::UnitStore(const std::string& directory)
    : m_directory(directory.empty() ? UsualDirectory() : directory)
{
}

DWORD UnitStore::Create(const std::string& unit, std::string_view text) const
{
    if (m_directory.empty()) return ERROR_PATH_NOT_FOUND;
    const DWORD error = Write(Path(unit), text, files::FileReplacement::Existing::Refused);
    return error == ERROR_ALREADY_EXISTS ? ERROR_SERVICE_EXISTS : error;
}

bool UnitStore::Has(const std::string& unit) const
{
    const std::string path = Path(unit);
    files::FileContent head;
    return IsRegular(path) && files::ReadFileHead(path, kMark.size(), head) == ERROR_SUCCESS &&
           head.bytes == kMark;
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
    return Write(directory + "/" + kDropIn, text, files::FileReplacement::Existing::Replaced);
}

DWORD UnitStore::Undescribe(const std::string& unit) const
{
    const std::string directory = Path(unit) + ".d";
    if (const DWORD error = RemoveFile(directory + "/" + kDropIn)) return error;
    rmdir(directory.c_str()); // stays where others have put something into it
    return ERROR_SUCCESS;
}

DWORD Reload(Bus& bus)
{
    return bus.Call(nullptr, kManagerPath, kManager, "Reload", "");
}

DWORD ForgetStartType(Bus& bus, const std::string& unit)
{
    const DWORD unmasked = Unmask(bus, unit), disabled = Disable(bus, unit);
    return unmasked == ERROR_SUCCESS ? disabled : unmasked;
}

DWORD ResetFailed(Bus& bus, const std::string& unit)
{
    const DWORD error = bus.Call(nullptr, kManagerPath, kManager, "ResetFailedUnit", "s", unit.c_str());
    return error == ERROR_SERVICE_DOES_NOT_EXIST ? ERROR_SUCCESS : error; // one that isn't loaded
}

DWORD SetStartType(Bus& bus, const std::string& unit, DWORD startType)
{
    DWORD error = ERROR_INVALID_PARAMETER;
    if (startType == SERVICE_AUTO_START) {
        error = Unmask(bus, unit);
        if (error == ERROR_SUCCESS) error = Enable(bus, unit);
    } else if (startType == SERVICE_DEMAND_START) {
        error = ForgetStartType(bus, unit);
    } else if (startType == SERVICE_DISABLED) {
        error = Disable(bus, unit);
        if (error == ERROR_SUCCESS)
            error = bus.Call(nullptr, kManagerPath, kManager, "MaskUnitFiles", "asbb", 1, unit.c_str(), 0, 0);
    }
    return error == ERROR_SUCCESS ? Reload(bus) : error;
}

} // namespace kx::services::systemd

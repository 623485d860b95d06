// GetDriveTypeA, GetVolumeInformationA.

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/files/Directory.h"
#include "platform/files/Drives.h"
#include "platform/files/MountTable.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <sys/statfs.h>

namespace {

using kx::files::Drive;

constexpr DWORD kCasePreserved = 0x2;
constexpr DWORD kUnicode = 0x4;
constexpr DWORD kReadOnly = 0x80000;

// The name of the link in a directory that leads to a device; empty without one.
std::string LinkTo(const std::string& device, const std::string& directory)
{
    kx::files::Directory links(directory.c_str());
    while (const auto link = links.Next()) {
        std::error_code error;
        const auto target =
            std::filesystem::read_symlink(std::filesystem::path(directory) / link->name, error);
        if (!error && target.filename() == device) return std::string(link->name);
    }
    return {};
}

// Other bytes than plain ones stand in the links' names as `\x` and two digits.
// In UTF-8; empty without one.
std::string VolumeLabel(const std::string& device, const std::string& systemRoot)
{
    return kx::files::Unescape(LinkTo(device, systemRoot + "/dev/disk/by-label"), "\\x", 2, 16);
}

// The last eight digits of the device's number.
DWORD VolumeSerial(const std::string& device, const std::string& systemRoot)
{
    constexpr std::size_t kDigits = 8;
    std::string digits = LinkTo(device, systemRoot + "/dev/disk/by-uuid");
    std::erase(digits, '-');
    digits.erase(0, digits.size() - std::min(digits.size(), kDigits));
    DWORD serial = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), serial, 16);
    return serial;
}

// The drive whose root a path names (`X:\`, also without the separator).
std::optional<Drive> FindDrive(const char* pszRoot)
{
    const std::string_view root = pszRoot ? pszRoot : "";
    const bool bRoot = root.size() == 2 || (root.size() == 3 && (root[2] == '\\' || root[2] == '/'));
    if (!bRoot || root[1] != ':') return std::nullopt;
    return kx::files::FindDrive(root[0], true);
}

struct Volume
{
    std::string label;
    std::string fileSystem;
    DWORD serial = 0;
    DWORD flags = kCasePreserved | kUnicode;
    DWORD maxComponent = 0;
};

// Completes what the host said of a drive by what the system knows of the mount that it lies in.
Volume Describe(const Drive& drive, const struct statfs& info)
{
    Volume volume;
    volume.label = drive.label;
    volume.fileSystem = drive.fileSystem;
    volume.serial = drive.serial;
    volume.maxComponent = static_cast<DWORD>(info.f_namelen);
    const std::string systemRoot = kx::files::SystemRoot();
    const auto mounts = kx::files::ReadMounts(systemRoot);
    if (const auto* mount = kx::files::FindMount(mounts, *drive.root)) {
        const std::string device = kx::files::DeviceName(*mount, systemRoot);
        if (!drive.bHost) volume.label = VolumeLabel(device, systemRoot);
        if (volume.fileSystem.empty()) volume.fileSystem = mount->fileSystem;
        if (volume.serial == 0) volume.serial = VolumeSerial(device, systemRoot);
        if (mount->bReadOnly) volume.flags |= kReadOnly;
    }
    if (volume.serial == 0) volume.serial = static_cast<DWORD>(info.f_fsid.__val[0] ^ info.f_fsid.__val[1]);
    return volume;
}

void Deliver(const std::string& utf8, char* pszBuffer, DWORD nSize)
{
    if (pszBuffer) kx::text::CopyCut(kx::text::FromUtf8Lossy(utf8), pszBuffer, nSize);
}

void Deliver(DWORD dwValue, DWORD* pdwTarget)
{
    if (pdwTarget) *pdwTarget = dwValue;
}

} // namespace

UINT GetDriveTypeA(const char* pszRoot)
try {
    const auto drive = FindDrive(pszRoot);
    return drive ? drive->type : DRIVE_NO_ROOT_DIR;
} catch (...) {
    kx::NoMemory();
    return DRIVE_NO_ROOT_DIR;
}

int GetVolumeInformationA(const char* pszRoot, char* pszLabel, DWORD nLabelSize, DWORD* pdwSerial,
                          DWORD* pdwMaxComponent, DWORD* pdwFlags, char* pszFileSystem, DWORD nFileSystemSize)
try {
    const auto drive = FindDrive(pszRoot);
    if (!drive) return kx::Fail(ERROR_PATH_NOT_FOUND);
    struct statfs info;
    if (!drive->root || statfs((*drive->root + "/").c_str(), &info) != 0) return kx::Fail(ERROR_NOT_READY);
    const Volume volume = Describe(*drive, info);
    Deliver(volume.label, pszLabel, nLabelSize);
    Deliver(volume.serial, pdwSerial);
    Deliver(volume.maxComponent, pdwMaxComponent);
    Deliver(volume.flags, pdwFlags);
    Deliver(volume.fileSystem, pszFileSystem, nFileSystemSize);
    return 1;
} catch (...) {
    return kx::NoMemory();
}

// GetDriveTypeA, GetVolumeInformationA.

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/files/BlockDevices.h"
#include "platform/files/Drives.h"
#include "platform/files/MountTable.h"
#include "platform/files/SystemDrives.h"
#include "platform/files/VolumeId.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <cstring>
#include <sys/statfs.h>

namespace {

using kx::drives::Drive;

constexpr DWORD kCasePreserved = 0x2;
constexpr DWORD kUnicode = 0x4;
constexpr DWORD kReadOnly = 0x80000;

// The drive whose root a path names (`X:\`, also without the separator).
std::optional<Drive> FindDrive(const char* pszRoot)
{
    const std::string_view root =
        pszRoot ? std::string_view(pszRoot, strnlen(pszRoot, 4)) : std::string_view();
    const bool bRoot = root.size() == 2 || (root.size() == 3 && (root[2] == '\\' || root[2] == '/'));
    if (!bRoot || root[1] != ':') return std::nullopt;
    return kx::drives::Find(root[0], true);
}

struct Volume
{
    std::string label;
    std::string fileSystem;
    DWORD serial = 0;
    DWORD flags = kCasePreserved | kUnicode;
    DWORD maxComponent = 0;
};

// What the host said of a drive, completed by what the system knows of the mount that it lies in.
Volume Describe(const Drive& drive, const struct statfs& info)
{
    Volume volume;
    volume.label = drive.label;
    volume.fileSystem = drive.fileSystem;
    volume.serial = drive.serial;
    volume.maxComponent = static_cast<DWORD>(info.f_namelen);
    const std::string systemRoot = kx::drives::SystemRoot();
    const auto mounts = kx::drives::ReadMounts(systemRoot);
    if (const auto* mount = kx::drives::FindMount(mounts, *drive.root)) {
        const std::string device = kx::drives::DeviceName(*mount, systemRoot);
        if (!drive.bHost) volume.label = kx::drives::VolumeLabel(device, systemRoot);
        if (volume.fileSystem.empty()) volume.fileSystem = mount->fileSystem;
        if (volume.serial == 0) volume.serial = kx::drives::VolumeSerial(device, systemRoot);
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
{
    const auto drive = FindDrive(pszRoot);
    return drive ? drive->type : DRIVE_NO_ROOT_DIR;
}

int GetVolumeInformationA(const char* pszRoot, char* pszLabel, DWORD nLabelSize, DWORD* pdwSerial,
                          DWORD* pdwMaxComponent, DWORD* pdwFlags, char* pszFileSystem, DWORD nFileSystemSize)
{
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
}

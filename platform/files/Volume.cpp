// GetDriveTypeA, GetVolumeInformationA.

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/files/Directory.h"
#include "platform/files/Drives.h"
#include "platform/files/MountTable.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

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

// The value of a hexadecimal digit, or -1.
int Digit(char ch) noexcept
{
    if (ch >= '0' && ch <= '9') return ch - '0';
    if (ch >= 'a' && ch <= 'f') return ch - 'a' + 10;
    if (ch >= 'A' && ch <= 'F') return ch - 'A' + 10;
    return -1;
}

// Other bytes than plain ones stand in the links' names as `\x` and two digits.
// In UTF-8; empty without one.
std::string VolumeLabel(const std::string& device, const std::string& systemRoot)
{
    const std::string name = LinkTo(device, systemRoot + "/dev/disk/by-label");
    std::string label;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool bEscape = name.compare(i, 2, "\\x") == 0 && i + 3 < name.size();
        const int high = bEscape ? Digit(name[i + 2]) : -1;
        const int low = bEscape ? Digit(name[i + 3]) : -1;
        label += high >= 0 && low >= 0 ? static_cast<char>(high * 16 + low) : name[i];
        if (high >= 0 && low >= 0) i += 3;
    }
    return label;
}

DWORD VolumeSerial(const std::string& device, const std::string& systemRoot)
{
    DWORD serial = 0;
    for (const char ch : LinkTo(device, systemRoot + "/dev/disk/by-uuid"))
        if (const int digit = Digit(ch); digit >= 0) serial = serial << 4 | static_cast<DWORD>(digit);
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

#include "platform/files/VolumeId.h"

#include "platform/files/Directory.h"

#include <filesystem>

namespace kx::drives {

namespace {

// The name of the link in a directory that leads to a device; empty without one.
std::string LinkTo(const std::string& device, const std::string& directory)
{
    Directory links(directory.c_str());
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

} // namespace

// Other bytes than plain ones stand in the links' names as `\x` and two digits.
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

} // namespace kx::drives

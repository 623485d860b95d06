#include "platform/shell/Wording.h"

#include "include/platform/FileSystem.h"

#include <algorithm>
#include <glib.h>

namespace kx::shell {

namespace {

struct Word
{
    const char* english;
    const char* chinese;
};

// The languages of the database's own texts, in the user's order, so that both speak alike.
std::string Say(const Word& word)
{
    for (const char* const* language = g_get_language_names(); *language; ++language) {
        const std::string_view name = *language;
        if (name.starts_with("zh")) return word.chinese;
        if (name.starts_with("en") || name == "C") break;
    }
    return word.english;
}

Word DriveWord(UINT nDriveType)
{
    switch (nDriveType) {
    case DRIVE_REMOVABLE:
        return {"Removable Disk", "可移动磁盘"};
    case DRIVE_FIXED:
        return {"Local Disk", "本地磁盘"};
    case DRIVE_REMOTE:
        return {"Network Drive", "网络驱动器"};
    case DRIVE_CDROM:
        return {"CD Drive", "CD 驱动器"};
    case DRIVE_RAMDISK:
        return {"RAM Disk", "RAM 磁盘"};
    default:
        return {"Disk", "磁盘"};
    }
}

} // namespace

std::string DriveWording(UINT nDriveType)
{
    return Say(DriveWord(nDriveType));
}

std::string FolderWording()
{
    return Say({"Folder", "文件夹"});
}

std::string FileWording(std::string_view name)
{
    std::string file = Say({"File", "文件"});
    const auto point = name.rfind('.');
    if (point == name.npos || point == 0 || point + 1 == name.size()) return file;
    std::string extension(name.substr(point + 1));
    std::transform(extension.begin(), extension.end(), extension.begin(), g_ascii_toupper);
    return extension + ' ' + file;
}

} // namespace kx::shell

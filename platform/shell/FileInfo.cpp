#include "include/platform/Shell.h"

#include "include/platform/FileSystem.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/files/Path.h"
#include "platform/module/Door.h"
#include "platform/shell/Functions.h"
#include "platform/sync/Mutex.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unordered_map>

KX_DOOR(shell, kx::shell::Functions);

struct _IMAGELIST
{
    int size; // the icons' sides in pixels
};

namespace {

constexpr _IMAGELIST kLarge{32};
constexpr _IMAGELIST kSmall{16};

// The icons so far, the same ones in both sizes. The names stay where they are once they are in.
class IconTable
{
public:
    IconTable()
    {
        const kx::sync::MutexLock lock(m_lock);
        Add("application-octet-stream application-x-generic");
    }

    int Find(const std::string& names)
    {
        const kx::sync::MutexLock lock(m_lock);
        const auto found = m_indices.find(names);
        return found == m_indices.end() ? Add(names) : found->second;
    }

    int Count()
    {
        const kx::sync::MutexLock lock(m_lock);
        return static_cast<int>(m_names.size());
    }

    const char* NameAt(int nIndex)
    {
        const kx::sync::MutexLock lock(m_lock);
        const bool bInside = nIndex >= 0 && static_cast<std::size_t>(nIndex) < m_names.size();
        return bInside ? m_names[static_cast<std::size_t>(nIndex)].c_str() : "";
    }

private:
    int Add(const std::string& names) KX_REQUIRES(m_lock)
    {
        const int index = static_cast<int>(m_names.size());
        m_indices.emplace(m_names.emplace_back(names), index);
        return index;
    }

    kx::sync::Mutex m_lock;
    std::deque<std::string> m_names KX_GUARDED_BY(m_lock);
    std::unordered_map<std::string_view, int> m_indices KX_GUARDED_BY(m_lock);
};

// The index in the system image lists of the icon with these names, which is added if it is new. Index 0 is
// the icon of a file of which nothing is known.
int IconIndex(const std::string& names)
{
    return names.empty() ? 0 : kx::The<IconTable>().Find(names);
}

const _IMAGELIST* SystemImageList(bool bSmall) noexcept
{
    return bSmall ? &kSmall : &kLarge;
}

// The parts of a path that are shown; texts in the process's code page.
struct Item
{
    std::string name;
    std::string type;
    std::string icons;
};

// The upper-case letter of a drive; 0 for anything else.
constexpr char DriveLetter(char ch) noexcept
{
    const char upper = ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch;
    return upper >= 'A' && upper <= 'Z' ? upper : '\0';
}

// The drive of a text that says `X:\`, which is a drive even while it holds no medium; 0 for another text.
char SpelledDrive(std::string_view path) noexcept
{
    const bool bRoot = path.size() >= 3 && path[1] == ':' && path.find_first_not_of("\\/", 2) == path.npos;
    return bRoot ? DriveLetter(path[0]) : '\0';
}

// The drive whose root was resolved from a text (`\`, `C:\a\..`).
char ResolvedDrive(std::string_view path, const kx::files::Resolved& resolved)
{
    if (path.size() >= 2 && path[1] == ':') return DriveLetter(path[0]);
    const auto named = kx::files::FromSystem(resolved.system);
    return named ? named->front() : '\0';
}

const char* DriveIcon(UINT nDriveType)
{
    switch (nDriveType) {
    case DRIVE_REMOVABLE:
        return "drive-removable-media";
    case DRIVE_CDROM:
        return "drive-optical media-optical";
    case DRIVE_REMOTE:
        return "folder-remote network-server";
    default:
        return "drive-harddisk";
    }
}

// The label of a drive, or its kind for one without; looked up only if the name is asked for, since it takes
// a look at the mounts.
std::string DriveName(const char* pszRoot, const std::string& type)
{
    std::array<char, MAX_PATH> label{};
    GetVolumeInformationA(pszRoot, label.data(), static_cast<DWORD>(label.size()), nullptr, nullptr, nullptr,
                          nullptr, 0);
    return (label[0] != '\0' ? label.data() : type) + " (" + pszRoot[0] + ":)";
}

std::optional<Item> FindDrive(char letter, bool bName)
{
    const std::array<char, 4> root{letter, ':', '\\', '\0'};
    const UINT kind = GetDriveTypeA(root.data());
    if (kind == DRIVE_NO_ROOT_DIR) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return std::nullopt;
    }
    Item item;
    const auto* const shell = g_door.Open();
    item.type = kx::text::FromUtf8Lossy(shell ? shell->driveWording(kind) : "Disk");
    item.icons = DriveIcon(kind);
    if (bName) item.name = DriveName(root.data(), item.type);
    return item;
}

bool IsDirectory(const std::string& path) noexcept
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Without the module there are plain words and the icon of a file of which nothing is known.
std::optional<kx::shell::ContentType> FindContentType(const std::string& path)
{
    if (const auto* const shell = g_door.Open()) return shell->findContentType(path);
    struct stat info;
    if (lstat(path.c_str(), &info) != 0) return std::nullopt;
    return kx::shell::ContentType{IsDirectory(path) ? "Folder" : "File", {}};
}

std::optional<Item> FindEntry(const kx::files::Resolved& resolved)
{
    if (resolved.trailing && !IsDirectory(resolved.system)) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return std::nullopt;
    }
    const auto content = FindContentType(resolved.system);
    if (!content) {
        kx::FailErrno();
        return std::nullopt;
    }
    const std::string name = resolved.system.substr(resolved.system.rfind('/') + 1);
    return Item{kx::text::FromUtf8Lossy(name), kx::text::FromUtf8Lossy(content->type), content->icons};
}

std::optional<Item> FindItem(const char* pszPath, bool bName)
{
    if (!pszPath) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return std::nullopt;
    }
    if (const char letter = SpelledDrive(pszPath)) return FindDrive(letter, bName);
    const auto resolved = kx::files::Resolve(pszPath);
    if (!resolved) return std::nullopt;
    return resolved->root ? FindDrive(ResolvedDrive(pszPath, *resolved), bName) : FindEntry(*resolved);
}

template <std::size_t Size>
void Put(const std::string& text, char (&field)[Size])
{
    kx::text::CopyCut(text, field, Size);
}

} // namespace

std::uintptr_t SHGetFileInfoA(const char* pszPath, DWORD, SHFILEINFOA* pInfo, UINT cbInfo, UINT nFlags)
try {
    if (!pInfo || cbInfo < sizeof(SHFILEINFOA))
        return static_cast<std::uintptr_t>(kx::Fail(ERROR_INVALID_PARAMETER));
    const auto item = FindItem(pszPath, (nFlags & SHGFI_DISPLAYNAME) != 0);
    if (nFlags & SHGFI_DISPLAYNAME) Put(item ? item->name : "", pInfo->szDisplayName);
    if (nFlags & SHGFI_TYPENAME) Put(item ? item->type : "", pInfo->szTypeName);
    if (nFlags & SHGFI_SYSICONINDEX) pInfo->iIcon = item ? IconIndex(item->icons) : 0;
    if (!item) return 0;
    if (!(nFlags & SHGFI_SYSICONINDEX)) return 1;
    return reinterpret_cast<std::uintptr_t>(SystemImageList((nFlags & SHGFI_SMALLICON) != 0));
} catch (...) {
    return kx::NoMemory();
}

int ImageList_GetImageCount(const _IMAGELIST* pList)
try {
    return pList ? kx::The<IconTable>().Count() : 0;
} catch (...) {
    return kx::NoMemory();
}

int ImageList_GetIconSize(const _IMAGELIST* pList, int* pnWidth, int* pnHeight)
{
    if (!pList || !pnWidth || !pnHeight) return 0;
    *pnWidth = *pnHeight = pList->size;
    return 1;
}

const char* ImageList_GetIconName(const _IMAGELIST* pList, int nIndex)
try {
    return pList ? kx::The<IconTable>().NameAt(nIndex) : "";
} catch (...) {
    kx::NoMemory();
    return "";
}

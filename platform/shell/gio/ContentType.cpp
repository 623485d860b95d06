#include "include/platform/FileSystem.h"
#include "platform/Immortal.h"
#include "platform/files/WholeFile.h"
#include "platform/module/Door.h"
#include "platform/shell/gio/Gio.h"
#include "platform/sync/Mutex.h"

#include <algorithm>
#include <gio/gio.h>
#include <glib.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>

namespace kx::shell::gio {

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

std::string FolderWording()
{
    return Say({"Folder", "文件夹"});
}

// A file of which nothing is known but its name: "DAT File", "File".
std::string FileWording(std::string_view name)
{
    std::string file = Say({"File", "文件"});
    const auto point = name.rfind('.');
    if (point == name.npos || point == 0 || point + 1 == name.size()) return file;
    std::string extension(name.substr(point + 1));
    std::transform(extension.begin(), extension.end(), extension.begin(), g_ascii_toupper);
    return extension + ' ' + file;
}

constexpr std::size_t kHead = 4096; // more than any of the database's rules looks at

struct Free
{
    void operator()(char* text) const noexcept { g_free(text); }
    void operator()(GIcon* icon) const noexcept { g_object_unref(icon); }
};

using Text = std::unique_ptr<char, Free>;

// Held around every use of the database. GIO locks for itself, but a client's race detector, which doesn't
// see into it, would not know. Where the database lies is settled first, or GIO would read it twice and lose
// the first reading.
class Database
{
public:
    Database() : m_lock(TheLock()) { g_content_type_get_mime_dirs(); }

private:
    static sync::Mutex& TheLock()
    {
        static Immortal<sync::Mutex> lock;
        return lock.Get();
    }

    sync::MutexLock m_lock;
};

// The entry itself, or what it points at if there is such a thing.
bool Stat(const std::string& path, struct stat& info) noexcept
{
    return stat(path.c_str(), &info) == 0 || lstat(path.c_str(), &info) == 0;
}

std::string_view NameOf(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

Text Guess(const std::string& name, std::string_view head, bool& bUncertain)
{
    const Database database;
    gboolean uncertain = FALSE;
    Text type(g_content_type_guess(name.c_str(), reinterpret_cast<const guchar*>(head.data()), head.size(),
                                   &uncertain));
    bUncertain = uncertain != FALSE;
    return type;
}

Text FileType(const std::string& path, const struct stat& info)
{
    const std::string name(NameOf(path));
    bool bUncertain = false;
    Text type = Guess(name, {}, bUncertain);
    if (!bUncertain) return type;
    if (info.st_size == 0) return Text(g_strdup("application/x-zerosize"));
    files::FileContent head;
    files::ReadFileHead(path, kHead, head);
    return head.bytes.empty() ? std::move(type) : Guess(name, head.bytes, bUncertain);
}

Text TypeOf(const std::string& path, const struct stat& info)
{
    switch (info.st_mode & S_IFMT) {
    case S_IFREG:
        return FileType(path, info);
    case S_IFDIR:
        return Text(g_strdup("inode/directory"));
    case S_IFLNK:
        return Text(g_strdup("inode/symlink"));
    case S_IFCHR:
        return Text(g_strdup("inode/chardevice"));
    case S_IFBLK:
        return Text(g_strdup("inode/blockdevice"));
    case S_IFIFO:
        return Text(g_strdup("inode/fifo"));
    default:
        return Text(g_strdup("inode/socket"));
    }
}

// A description that only repeats the type's name comes from no database.
std::string Describe(const char* type, const std::string& path, bool bDirectory)
{
    const Text text = [type] {
        const Database database;
        return Text(g_content_type_get_description(type));
    }();
    const bool bKnown =
        text && !g_content_type_is_unknown(type) && !std::string_view(text.get()).starts_with(type);
    if (bKnown) return text.get();
    return bDirectory ? FolderWording() : FileWording(NameOf(path));
}

std::string IconsOf(const char* type)
{
    const Database database;
    std::string names;
    const std::unique_ptr<GIcon, Free> icon(g_content_type_get_icon(type));
    if (!G_IS_THEMED_ICON(icon.get())) return names;
    for (const char* const* name = g_themed_icon_get_names(G_THEMED_ICON(icon.get())); *name; ++name) {
        if (std::string_view(*name).ends_with("-symbolic")) continue; // of one colour: for buttons, not lists
        if (!names.empty()) names += ' ';
        names += *name;
    }
    return names;
}

std::optional<ContentType> FindContentType(const std::string& path)
{
    struct stat info;
    if (!Stat(path, info)) return std::nullopt;
    const Text type = TypeOf(path, info);
    const bool bDirectory = S_ISDIR(info.st_mode);
    // Every theme has a folder, also where no database says so.
    return ContentType{Describe(type.get(), path, bDirectory), bDirectory ? "folder" : IconsOf(type.get())};
}

constexpr Functions kFunctions{{LoadBundle, BundleOfProcess}, FindContentType, [](UINT nDriveType) {
                                   return Say(DriveWord(nDriveType));
                               }};

} // namespace

} // namespace kx::shell::gio

KX_MODULE_ENTRY(shell, kx::shell::gio::kFunctions)

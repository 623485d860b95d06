#include "platform/registry/RegistryFile.h"

#include "include/platform/Error.h"
#include "include/platform/Exception.h"
#include "include/platform/Host.h"
#include "platform/Errno.h"
#include "platform/Immortal.h"
#include "platform/files/WholeFile.h"
#include "platform/profile/IniEdit.h"
#include "platform/profile/IniStore.h"
#include "platform/sync/Mutex.h"
#include "platform/text/CharWalk.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <new>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kx::registry {

namespace {

constexpr std::size_t kMaxName = 255;
constexpr std::size_t kMaxPath = 3 * 1024;
constexpr mode_t kNewFile = 0600;
constexpr mode_t kNewDirectory = 0700;

struct HostPath
{
    kx::sync::Mutex lock;
    std::string path KX_GUARDED_BY(lock);
};

std::string HomeDirectory()
{
    if (const char* home = std::getenv("HOME"); home && home[0] == '/') return home;
    std::array<char, 4096> buffer;
    passwd entry{};
    passwd* found = nullptr;
    getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
    return found && found->pw_dir && found->pw_dir[0] == '/' ? found->pw_dir : "";
}

// A relative setting counts as none.
std::string ConfigDirectory()
{
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && config[0] == '/') return config;
    const std::string home = HomeDirectory();
    return home.empty() ? home : home + "/.config";
}

// The Linux path of the file with the per-user values; empty where the user has no home.
std::string FilePath()
{
    HostPath& host = kx::The<HostPath>();
    {
        const kx::sync::MutexLock lock(host.lock);
        if (!host.path.empty()) return host.path;
    }
    const std::string config = ConfigDirectory();
    return config.empty() ? config : config + "/kxcommon/registry.ini";
}

bool IsPlain(char ch) noexcept
{
    return ch > ' ' && ch < '\x7F' && std::string_view("%=;[]@\"'").find(ch) == std::string_view::npos;
}

// Any bytes as printable ASCII that an INI file keeps as a name or a value: all but letters, digits and plain
// marks become "%" and two hexadecimal digits. Both bytes of a double-byte character do, so that its second
// is no letter whose case is ignored.
std::string Escape(std::string_view bytes)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const bool bDoubleByte = text::IsDoubleByte();
    std::string escaped;
    escaped.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = text::CharLength(bytes, i, bDoubleByte);
        for (const char ch : bytes.substr(i, length)) {
            if (length == 1 && IsPlain(ch)) {
                escaped += ch;
            } else {
                const auto byte = static_cast<unsigned char>(ch);
                escaped.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
            }
        }
        i += length;
    }
    return escaped;
}

std::optional<std::string> Unescape(std::string_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        if (text.size() - i < 3) return std::nullopt;
        unsigned byte = 0;
        const char* end = text.data() + i + 3;
        if (std::from_chars(end - 2, end, byte, 16).ptr != end) return std::nullopt;
        bytes += static_cast<char>(byte);
        i += 2;
    }
    return bytes;
}

std::string LineName(std::string_view name)
{
    return name.empty() ? "@" : Escape(name);
}

std::optional<Value> ParseValue(std::string_view line)
{
    Value value;
    const char* end = line.data() + line.size();
    const auto type = std::from_chars(line.data(), end, value.type);
    if (type.ec != std::errc() || type.ptr == end || *type.ptr != ':') return std::nullopt;
    auto data = Unescape({type.ptr + 1, end});
    if (!data) return std::nullopt;
    value.data = std::move(*data);
    return value;
}

DWORD Change(const profile::Edit& edit)
{
    const std::string file = FilePath();
    if (file.empty()) return ERROR_PATH_NOT_FOUND;
    files::MakeDirectoriesAbove(file, kNewDirectory);
    return profile::Update(file, kNewFile, edit);
}

bool MayWrite(const std::string& path) noexcept
{
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

} // namespace

std::optional<KeyPath> Join(const KeyPath& parent, std::string_view subKey)
{
    KeyPath path = parent;
    while (!subKey.empty()) {
        const std::size_t length = std::min(text::Find(subKey, '\\'), subKey.size());
        const std::string_view name = subKey.substr(0, length);
        subKey.remove_prefix(std::min(length + 1, subKey.size()));
        if (name.empty()) continue;
        if (!path.empty()) path += '\\';
        path += Escape(name);
        if (name.size() > kMaxName || path.size() > kMaxPath) return std::nullopt;
    }
    return path;
}

bool HasKey(const KeyPath& key)
{
    if (key.empty()) return true;
    const auto ini = profile::ReadSystem(FilePath());
    return ini && ini->HasSection(key);
}

DWORD MakeKey(const KeyPath& key, bool& bNew)
{
    bNew = false;
    if (HasKey(key)) return ERROR_SUCCESS;
    return Change([&](std::string_view old) {
        std::string text(old);
        std::size_t length = 0;
        for (std::size_t end = 0; end < key.size(); end = length + 1) {
            length = std::min(key.find('\\', end), key.size());
            const std::size_t before = text.size();
            text = profile::AddSection(text, std::string_view(key).substr(0, length));
            bNew = text.size() != before;
        }
        return text;
    });
}

std::optional<Value> FindValue(const KeyPath& key, std::string_view name)
{
    const auto ini = profile::ReadSystem(FilePath());
    const auto line = ini ? ini->Find(key, LineName(name)) : std::nullopt;
    return line ? ParseValue(*line) : std::nullopt;
}

DWORD SetValue(const KeyPath& key, std::string_view name, const Value& value)
{
    const std::string line = std::to_string(value.type) + ":" + Escape(value.data);
    return Change([&](std::string_view old) { return profile::SetKey(old, key, LineName(name), line); });
}

DWORD CheckWritable()
{
    std::string path = FilePath();
    if (path.empty()) return ERROR_PATH_NOT_FOUND;
    if (!MayWrite(path) && errno != ENOENT) return ErrorFromErrno(errno);
    // The file is replaced by one made beside it, or is made, with the directories that lack.
    do
        path.resize(std::max<std::size_t>(path.rfind('/'), 1));
    while (!MayWrite(path) && errno == ENOENT && path.size() > 1);
    return MayWrite(path) ? ERROR_SUCCESS : ErrorFromErrno(errno);
}

} // namespace kx::registry

void KXHost::SetRegistryFile(const std::string& strPath)
try {
    std::error_code error;
    std::string path = strPath.empty() ? strPath : std::filesystem::absolute(strPath, error).string();
    auto& host = kx::The<kx::registry::HostPath>();
    const kx::sync::MutexLock lock(host.lock);
    host.path = std::move(path);
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

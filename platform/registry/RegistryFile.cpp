#include "platform/registry/RegistryFile.h"

#include "include/platform/Error.h"
#include "platform/Errno.h"
#include "platform/profile/IniEdit.h"
#include "platform/profile/IniStore.h"
#include "platform/registry/Escape.h"
#include "platform/registry/RegistryPath.h"
#include "platform/text/CharWalk.h"

#include <charconv>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kx::registry {

namespace {

constexpr std::size_t kMaxName = 255;
constexpr std::size_t kMaxPath = 3 * 1024;
constexpr mode_t kNewFile = 0600;
constexpr mode_t kNewDirectory = 0700;

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

void MakeDirectories(const std::string& file)
{
    for (std::size_t slash = 1; (slash = file.find('/', slash)) != file.npos; ++slash)
        mkdir(file.substr(0, slash).c_str(), kNewDirectory);
}

DWORD Change(const profile::Edit& edit)
{
    const std::string file = FilePath();
    if (file.empty()) return ERROR_PATH_NOT_FOUND;
    MakeDirectories(file);
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

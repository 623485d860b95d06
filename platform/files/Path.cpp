#include "platform/files/Path.h"

#include "include/platform/CodePage.h"
#include "include/platform/Exception.h"
#include "include/platform/Host.h"
#include "include/platform/Types.h"
#include "platform/Errno.h"
#include "platform/files/Drives.h"
#include "platform/sync/AlternateStack.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace kx::files {

namespace {

constexpr std::size_t kMaxLength = MAX_PATH - 1;

// A path in UTF-8, taken apart: `D:`, `\`, and the rest.
struct Parts
{
    explicit Parts(std::string_view text) : rest(text)
    {
        if (rest.size() >= 2 && IsLetter(rest[0]) && rest[1] == ':') {
            drive = rest[0];
            rest.remove_prefix(2);
        }
        rooted = !rest.empty() && IsSeparator(rest[0]);
    }

    char drive = '\0';
    bool rooted = false;
    std::string_view rest;
};

// The beginning of a path: a Linux directory, and how much of its text `..` can't leave.
struct Start
{
    std::string directory;
    std::size_t root = 0;
};

std::optional<Start> AtRoot(const std::optional<Drive>& drive)
{
    if (!drive || !drive->root) {
        Fail(drive ? ERROR_NOT_READY : ERROR_PATH_NOT_FOUND);
        return std::nullopt;
    }
    return Start{*drive->root, drive->root->size()};
}

// Relative paths begin in the current directory, those with only a separator or another drive's letter at a
// root.
std::optional<Start> FindStart(const Parts& parts)
{
    if (parts.drive && parts.rooted) return AtRoot(FindDrive(parts.drive));
    std::string current = CurrentDirectory();
    const auto drive = DriveHolding(current);
    const bool bOther = parts.drive && (!drive || (parts.drive & ~0x20) != drive->letter);
    if (bOther) return AtRoot(FindDrive(parts.drive));
    if (parts.rooted) return AtRoot(drive ? drive : FindDrive('C'));
    if (current.empty()) {
        Fail(ERROR_PATH_NOT_FOUND);
        return std::nullopt;
    }
    if (current == "/") current.clear();
    return Start{std::move(current), drive ? drive->root->size() : 0};
}

// Adds the components of a path to a Linux directory: doubled separators and `.` say nothing, `..` goes up in
// the text, never above the root. Returns how much of the directory's own text was left.
std::size_t Append(std::string& directory, std::size_t root, std::string_view rest)
{
    std::size_t kept = directory.size();
    while (!rest.empty()) {
        const auto end = std::find_if(rest.begin(), rest.end(), IsSeparator);
        const std::string_view name(rest.begin(), end);
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        if (name.empty() || name == ".") continue;
        if (name == "..") {
            if (directory.size() > root) directory.resize(directory.rfind('/'));
            kept = std::min(kept, directory.size());
        } else {
            directory.append(1, '/').append(name);
        }
    }
    return kept;
}

// A path's text in UTF-8; nothing, with the last error set, for what can't be one.
std::optional<std::string> ReadText(const char* pszPath)
{
    sync::GuardCaller();
    const std::size_t length = pszPath ? strnlen(pszPath, MAX_PATH) : 0;
    std::optional<std::string> utf8;
    if (length > 0 && length <= kMaxLength) utf8 = text::ToUtf8({pszPath, length});
    if (!utf8)
        Fail(length == 0           ? ERROR_PATH_NOT_FOUND
             : length > kMaxLength ? ERROR_FILENAME_EXCED_RANGE
                                   : ERROR_INVALID_NAME);
    return utf8;
}

// An empty text is the current directory.
std::optional<Resolved> ResolveText(std::string_view text)
{
    const Parts parts(text);
    auto start = FindStart(parts);
    if (!start) return std::nullopt;

    Resolved resolved;
    resolved.system = std::move(start->directory);
    const std::size_t kept = Append(resolved.system, start->root, parts.rest);
    resolved.exact = !MatchExisting(resolved.system, kept);
    resolved.absolute = parts.drive && parts.rooted;
    resolved.root = resolved.system.size() == start->root;
    resolved.trailing = !parts.rest.empty() && IsSeparator(parts.rest.back());
    if (resolved.system.empty()) resolved.system.push_back('/');
    return resolved;
}

// The beginning of a path's last component.
std::size_t LastComponent(std::string_view text)
{
    std::size_t begin = text.size();
    const std::size_t first = text.size() - Parts(text).rest.size();
    while (begin > first && !IsSeparator(text[begin - 1]))
        --begin;
    return begin;
}

} // namespace

std::optional<Resolved> Resolve(const char* pszPath)
{
    const auto text = ReadText(pszPath);
    return text ? ResolveText(*text) : std::nullopt;
}

std::optional<Pattern> ResolvePattern(const char* pszPattern)
{
    const auto text = ReadText(pszPattern);
    if (!text) return std::nullopt;
    const std::size_t begin = LastComponent(*text);
    std::string name = text->substr(begin);
    const bool bWildcards = name.find_first_of("*?") != name.npos;
    auto resolved = ResolveText(bWildcards ? std::string_view(*text).substr(0, begin) : *text);
    if (!resolved) return std::nullopt;
    if (bWildcards) return Pattern{std::move(resolved->system), std::move(name), true};
    if (resolved->root || resolved->trailing) {
        Fail(ERROR_FILE_NOT_FOUND);
        return std::nullopt;
    }
    return Pattern{DirectoryOf(resolved->system), std::string(LastName(resolved->system)), false};
}

std::optional<std::string> ToSystem(const char* pszPath)
{
    auto resolved = Resolve(pszPath);
    if (!resolved) return std::nullopt;
    return std::move(resolved->system);
}

std::optional<std::string> FromSystem(std::string_view systemPath)
{
    if (systemPath.empty() || systemPath[0] != '/') return std::nullopt;
    std::string path;
    Append(path, 0, systemPath);
    if (std::count(systemPath.begin(), systemPath.end(), '\\') > 0) return std::nullopt;
    const auto drive = DriveHolding(path);
    if (!drive) return std::nullopt;

    path.replace(0, drive->root->size(), {drive->letter, ':'});
    if (path.size() == 2) path += '/';
    std::replace(path.begin(), path.end(), '/', '\\');
    auto bytes = text::FromUtf8(path);
    if (!bytes || bytes->size() > kMaxLength) return std::nullopt;
    return bytes;
}

std::string_view LastName(std::string_view systemPath) noexcept
{
    return systemPath.substr(systemPath.rfind('/') + 1);
}

std::string DirectoryOf(const std::string& systemPath)
{
    return systemPath.substr(0, std::max<std::size_t>(systemPath.rfind('/'), 1));
}

unsigned Generation() noexcept
{
    return DriveGeneration() * 2 + (GetACP() == CP_UTF8 ? 1 : 0);
}

} // namespace kx::files

std::string KXHost::ToSystemPath(const char* pszPath)
try {
    return kx::files::ToSystem(pszPath).value_or("");
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

CString KXHost::FromSystemPath(const std::string& strPath)
try {
    return CString(std::string_view(kx::files::FromSystem(strPath).value_or("")));
} catch (const std::bad_alloc&) {
    AfxThrowMemoryException();
}

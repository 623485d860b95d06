#include "platform/files/NameMatch.h"

#include "platform/files/Directory.h"
#include "platform/text/CharWalk.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <sys/stat.h>

namespace kx::path {

namespace {

bool Exists(const std::string& path)
{
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

// Whether a directory's entry equals a name that is folded already.
bool EqualsFolded(std::string_view entry, std::string_view folded)
{
    if (!text::IsAscii(entry)) return text::FoldCase(entry) == folded;
    return std::equal(entry.begin(), entry.end(), folded.begin(), folded.end(),
                      [](char a, char b) { return text::ToLower(a) == b; });
}

// The entry of a directory that equals a name ignoring case. With `bDirectory` a file doesn't count.
std::optional<std::string> FindEntry(const std::string& directory, std::string_view name, bool bDirectory)
{
    Directory entries(directory.empty() ? "/" : directory.c_str());
    const std::string folded = text::FoldCase(name);
    std::optional<std::string> found;
    while (const auto entry = entries.Next()) {
        if (!EqualsFolded(entry->name, folded) || (found && *found <= entry->name)) continue;
        if (bDirectory && !entries.IsDirectory(*entry)) continue;
        found = entry->name;
    }
    return found;
}

} // namespace

bool MatchExisting(std::string& path, std::size_t fixed)
{
    if (path.size() <= fixed || Exists(path)) return false;
    // The longest head that exists as it stands; most often only the last component is missing.
    std::size_t end = path.rfind('/');
    while (end > fixed && !Exists(path.substr(0, end)))
        end = path.rfind('/', end - 1);

    bool bReplaced = false;
    for (std::size_t begin = end; begin < path.size(); begin = end) {
        end = std::min(path.find('/', begin + 1), path.size());
        if (bReplaced && Exists(path.substr(0, end))) continue;
        const std::string_view name = std::string_view(path).substr(begin + 1, end - begin - 1);
        const auto entry = FindEntry(path.substr(0, begin), name, end < path.size());
        if (!entry) break;
        path.replace(begin + 1, name.size(), *entry);
        end = begin + 1 + entry->size();
        bReplaced = true;
    }
    return bReplaced;
}

} // namespace kx::path

#include "platform/files/NameMatch.h"

#include "platform/files/NameCache.h"
#include "platform/text/Conversion.h"

#include <algorithm>
#include <string_view>
#include <sys/stat.h>

namespace kx::path {

namespace {

bool Exists(const std::string& path)
{
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
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
        const std::string directory = begin == 0 ? "/" : path.substr(0, begin);
        const auto entry = FindEntry(directory, text::FoldCase(name), end < path.size());
        if (!entry) break;
        path.replace(begin + 1, name.size(), *entry);
        end = begin + 1 + entry->size();
        bReplaced = true;
    }
    return bReplaced;
}

} // namespace kx::path

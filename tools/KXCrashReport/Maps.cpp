#include "tools/KXCrashReport/Maps.h"

#include <sstream>

namespace kx::report {

std::vector<Mapping> ParseMaps(std::string_view text)
{
    std::vector<Mapping> maps;
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        Mapping map;
        char dash = '\0';
        std::string permissions;
        std::string device;
        std::string inode;
        words >> std::hex >> map.start >> dash >> map.end >> permissions >> map.offset >> device >> inode;
        if (words.fail() || map.end < map.start || permissions.size() < 4) continue;
        std::getline(words >> std::ws, map.path);
        map.bRead = permissions[0] == 'r';
        map.bWrite = permissions[1] == 'w';
        map.bExecute = permissions[2] == 'x';
        map.bShared = permissions[3] == 's';
        maps.push_back(std::move(map));
    }
    return maps;
}

} // namespace kx::report

#include "tools/KXCrashReport/ReportFiles.h"

#include "platform/UniqueFd.h"
#include "platform/crash/EntryMatch.h"

#include <cstdio>
#include <fcntl.h>

namespace kx::report {

ReportFiles PlaceOf(std::string_view program, std::string_view dump)
{
    const std::size_t beside = program.rfind('/');
    std::string directory = std::string(program.substr(0, beside + 1)) + "dumps";
    crash::MatchEntries(directory.data(), beside == program.npos ? 0 : beside);
    std::string name(dump.substr(dump.find_last_of("\\/") + 1));
    if (name.empty() || name == "." || name == "..") name = "crash.dmp";
    const std::string stem = name.ends_with(".dmp") ? name.substr(0, name.size() - 4) : name;
    return {directory + "/" + name, directory + "/" + stem + ".txt"};
}

bool WriteWhole(const std::string& path, const std::function<bool(int)>& write)
{
    const std::string part = path + ".part";
    unlink(part.c_str());
    UniqueFd file(open(part.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file) return false;
    if (write(file.Get()) && std::rename(part.c_str(), path.c_str()) == 0) return true;
    unlink(part.c_str());
    return false;
}

} // namespace kx::report

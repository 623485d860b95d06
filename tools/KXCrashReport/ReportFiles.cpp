#include "tools/KXCrashReport/ReportFiles.h"

#include "platform/crash/HeapFree.h"
#include "platform/files/WholeFile.h"

#include <unistd.h>

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
    unlink(path.c_str()); // one of the same second, or a link that somebody laid there
    files::FileReplacement file(files::FileReplacement::Existing::Refused);
    // The crash waits for this, so the disk isn't waited for.
    return file.Begin(path, 0600) == ERROR_SUCCESS && write(file.Fd()) && file.Commit(false) == ERROR_SUCCESS;
}

} // namespace kx::report

// Shows logs and crash reports.

#include "tools/kx/Commands.h"
#include "tools/kx/Findings.h"

#include <KXText.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <string>
#include <sys/inotify.h>
#include <unistd.h>
#include <vector>

namespace kx::tool {

namespace {

namespace fs = std::filesystem;

// Which lines are shown. A line without a head of its own belongs to the one before it.
class Filter
{
public:
    Filter(int nLevel, std::string match) : m_nLevel(nLevel), m_match(std::move(match)) {}

    // The level of a line's message; 0 for one that continues another.
    static int LevelOf(std::string_view line)
    {
        const std::size_t end = line.find("] ");
        if (!line.starts_with('[') || end == line.npos || end > 40) return 0;
        return std::atoi(std::string(line.substr(end + 2, 11)).c_str());
    }
    bool Shows(std::string_view line)
    {
        const int nLevel = LevelOf(line);
        if (nLevel > 0 || m_nShown == 0) {
            m_nShown = nLevel;
            m_bShows = nLevel >= m_nLevel && line.find(m_match) != line.npos;
        }
        return m_bShows;
    }
    int Level() const { return m_nShown; }

private:
    const int m_nLevel;
    const std::string m_match;
    int m_nShown = 0;
    bool m_bShows = false;
};

void Print(std::string_view line, int nLevel, bool bColor)
{
    const std::string text = KXText::ToUtf8(line);
    const char* const pszColor = !bColor ? "" : nLevel >= 2 ? "\033[31m" : nLevel == 1 ? "" : "\033[2m";
    const char* const pszEnd = *pszColor ? "\033[0m" : "";
    std::printf("%s%s%s\n", pszColor, text.c_str(), pszEnd);
}

// Waits until something happens to the file. False where that can't be waited for.
bool AwaitChange(int fd)
{
    pollfd waiting{fd, POLLIN, 0};
    if (poll(&waiting, 1, -1) < 0) return false;
    char buffer[4096];
    return read(fd, buffer, sizeof(buffer)) > 0;
}

} // namespace

int ShowLog(Arguments& arguments)
{
    const bool bFollow = arguments.Flag("-f");
    const auto level = arguments.Value("--level");
    const auto match = arguments.Value("--match");
    const auto path = arguments.Word();
    if (!path || !arguments.Rest().empty()) return Misused("kx log FILE [-f] [--level N] [--match TEXT]");
    std::ifstream file(*path, std::ios::binary);
    if (!file || fs::is_directory(*path)) return Complain("there is no log " + *path);
    const int watch = bFollow ? inotify_init1(IN_CLOEXEC) : -1;
    if (bFollow) inotify_add_watch(watch, path->c_str(), IN_MODIFY | IN_DELETE_SELF | IN_MOVE_SELF);
    Filter filter(level ? std::atoi(level->c_str()) : 0, match ? std::string(KXText::FromUtf8(*match)) : "");
    const bool bColor = isatty(STDOUT_FILENO) != 0 && !std::getenv("NO_COLOR");
    std::string line, part;
    std::streamoff at = 0;
    for (;;) {
        while (std::getline(file, part)) {
            line += part;
            if (file.eof()) break; // not whole yet
            at = file.tellg();
            if (filter.Shows(line)) Print(line, filter.Level(), bColor);
            line.clear();
        }
        std::fflush(stdout);
        if (!bFollow || ferror(stdout) || !AwaitChange(watch)) break;
        std::error_code error;
        const auto nSize = fs::file_size(*path, error);
        if (error) break;
        if (nSize < static_cast<std::uintmax_t>(at)) at = 0; // the log was begun anew
        line.clear();
        file.clear();
        file.seekg(at);
    }
    if (!line.empty() && filter.Shows(line)) Print(line, filter.Level(), bColor);
    if (watch >= 0) close(watch);
    return Clean;
}

int ShowReport(Arguments& arguments)
{
    const bool bGdb = !arguments.Flag("--no-gdb");
    const auto path = arguments.Word();
    if (!path || !arguments.Rest().empty()) return Misused("kx report FILE [--no-gdb]");
    const fs::path text = fs::path(*path).replace_extension(".txt");
    const fs::path dump = fs::path(*path).replace_extension(".dmp");
    std::ifstream file(text, std::ios::binary);
    if (!file || fs::is_directory(text)) return Complain("there is no report " + text.string());
    std::vector<char> block(64 << 10);
    while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0)
        std::fwrite(block.data(), 1, static_cast<std::size_t>(file.gcount()), stdout);
    std::fflush(stdout);
    std::error_code error;
    const bool bTerminal = isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
    if (!bGdb || !bTerminal || !fs::exists(dump, error)) return Clean;
    execlp("gdb", "gdb", "-core", dump.c_str(), nullptr);
    std::printf("The dump is %s; gdb, which shows it, isn't installed.\n", dump.c_str());
    return Clean;
}

} // namespace kx::tool

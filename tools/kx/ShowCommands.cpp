// Shows logs and crash reports.

#include "tools/kx/Commands.h"
#include "tools/kx/Findings.h"

#include <KXText.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kx::tool {

namespace {

namespace fs = std::filesystem;

// The lines that are shown. A line without a head of its own belongs to the one before it.
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
    const std::string text = bColor ? Printable(KXText::ToUtf8(line)) : KXText::ToUtf8(line);
    const char* const pszColor = !bColor ? "" : nLevel >= 2 ? "\033[31m" : nLevel == 1 ? "" : "\033[2m";
    const char* const pszEnd = *pszColor ? "\033[0m" : "";
    std::printf("%s%s%s\n", pszColor, text.c_str(), pszEnd);
}

// A log that is read line by line, also while it grows.
class Log
{
public:
    Log(const std::string& path, bool bFollow)
        : m_path(path), m_watch(bFollow ? inotify_init1(IN_CLOEXEC) : -1)
    {
    }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;
    ~Log()
    {
        if (m_watch >= 0) close(m_watch);
    }

    // Begins with the file that has the name now. False where none can be read.
    bool Open()
    {
        // A file whose name is taken away isn't gone while it is open here: that is a change of its
        // attributes.
        constexpr std::uint32_t kWhat = IN_MODIFY | IN_ATTRIB | IN_MOVE_SELF;
        m_file.reset(std::fopen(m_path.c_str(), "re"));
        if (!m_file || fstat(fileno(m_file.get()), &m_opened) != 0 || S_ISDIR(m_opened.st_mode)) return false;
        if (m_watch >= 0) inotify_add_watch(m_watch, m_path.c_str(), kWhat);
        m_nRead = 0;
        m_bGone = false;
        return true;
    }

    // The next line that is whole. Of one that is longer than anybody writes, each part counts as a line.
    bool Next(std::string& line)
    {
        for (int ch = 0; m_part.size() < kMostLine && (ch = std::getc(m_file.get())) != EOF;) {
            ++m_nRead;
            if (ch == '\n') return line = std::exchange(m_part, {}), true;
            m_part += static_cast<char>(ch);
        }
        if (m_part.size() < kMostLine) return false;
        line = std::exchange(m_part, {});
        return true;
    }
    // This text was followed by no line end.
    const std::string& Part() const { return m_part; }

    // Waits until there may be more. False once the file has lost its name to none other.
    bool AwaitMore()
    {
        std::clearerr(m_file.get());
        if (m_bGone) return Open(); // what was left of the file before has been read
        char events[4096];
        if (read(m_watch, events, sizeof(events)) <= 0) return false;
        struct stat now
        {
        };
        m_bGone =
            stat(m_path.c_str(), &now) != 0 || now.st_ino != m_opened.st_ino || now.st_dev != m_opened.st_dev;
        if (m_bGone || now.st_size >= m_nRead) return true;
        std::rewind(m_file.get()); // the log was begun anew
        m_nRead = 0;
        m_part.clear();
        return true;
    }

private:
    static constexpr std::size_t kMostLine = 1 << 20;

    struct Close
    {
        void operator()(FILE* pFile) const noexcept { std::fclose(pFile); }
    };

    const std::string m_path;
    const int m_watch;
    std::unique_ptr<FILE, Close> m_file;
    struct stat m_opened
    {
    };
    off_t m_nRead = 0;
    bool m_bGone = false; // the name is another's, or nobody's
    std::string m_part;
};

// The path of the program in the beginning of a report, "process NUMBER PATH"; gdb needs it to name
// functions.
std::string ProgramOf(std::string_view report)
{
    constexpr std::string_view kLine = "\nprocess ";
    const std::size_t at = report.find(kLine);
    if (at == report.npos) return {};
    const std::string_view line = report.substr(at + 1, report.find('\n', at + 1) - at - 1);
    const std::size_t path = line.find('/');
    return path == line.npos ? std::string() : std::string(line.substr(path));
}

} // namespace

int ShowLog(Arguments& arguments)
{
    const bool bFollow = arguments.Flag("-f");
    const auto level = arguments.Value("--level");
    const auto match = arguments.Value("--match");
    const auto path = arguments.Word();
    if (!path || !arguments.Rest().empty()) return Misused("kx log FILE [-f] [--level N] [--match TEXT]");
    Log log(*path, bFollow);
    if (!log.Open()) return Complain("there is no log " + *path);
    Filter filter(level ? std::atoi(level->c_str()) : 0, match ? std::string(KXText::FromUtf8(*match)) : "");
    const bool bColor = isatty(STDOUT_FILENO) != 0 && !std::getenv("NO_COLOR");
    const auto show = [&](std::string_view line) {
        if (filter.Shows(line)) Print(line, filter.Level(), bColor);
    };
    std::string line;
    do {
        while (!std::ferror(stdout) && log.Next(line))
            show(line);
        std::fflush(stdout);
    } while (bFollow && !std::ferror(stdout) && log.AwaitMore());
    if (!log.Part().empty()) show(log.Part());
    return Clean;
}

int ShowReport(Arguments& arguments)
{
    const bool bGdb = !arguments.Flag("--no-gdb");
    const auto path = arguments.Word();
    if (!path || !arguments.Rest().empty()) return Misused("kx report FILE [--no-gdb]");
    const fs::path text = fs::path(*path).replace_extension(".txt");
    const fs::path dump = fs::path(*path).replace_extension(".dmp");
    if (!fs::is_regular_file(text)) return Complain("there is no report " + text.string());
    std::ifstream file(text, std::ios::binary);
    std::vector<char> block(64 << 10);
    std::string program;
    while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0) {
        const std::string_view piece(block.data(), static_cast<std::size_t>(file.gcount()));
        if (program.empty()) program = ProgramOf(piece);
        std::fwrite(piece.data(), 1, piece.size(), stdout);
    }
    std::fflush(stdout);
    std::error_code error;
    const bool bTerminal = isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
    if (!bGdb || !bTerminal || !fs::exists(dump, error)) return Clean;
    if (!fs::exists(program, error)) program.clear();
    execlp("gdb", "gdb", "-core", dump.c_str(), program.empty() ? nullptr : program.c_str(), nullptr);
    std::printf("The dump is %s; gdb, which shows it, isn't installed.\n", dump.c_str());
    return Clean;
}

} // namespace kx::tool

#include "tools/KXCrashReport/LogFile.h"

#include "tools/KXCrashReport/QueuedLines.h"
#include "tools/KXCrashReport/Text.h"

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <sstream>
#include <sys/stat.h>

namespace kx::report {

namespace {

constexpr std::size_t kMostText = 16 << 20;

// The position of an open file of the process, which tells how much its writer has handed over.
std::optional<std::uint64_t> FilePosition(const Tracee& tracee, const std::string& number)
{
    std::istringstream words(ReadFile(tracee.ProcFile("fdinfo/") + number));
    std::string word;
    std::uint64_t position = 0;
    if (words >> word >> position && word == "pos:") return position;
    return std::nullopt;
}

// The log's file, and which of the queue's bytes go where in it.
class LogFile
{
public:
    LogFile(const Tracee& tracee, const core::Record& record, const core::Position& from)
    {
        const bool bSound = record.file >= 0 && record.check == core::CheckOf(record.process, record.file);
        if (!bSound) return;
        const std::string number = std::to_string(record.file);
        const std::string path = tracee.ProcFile("fd/") + number;
        m_fd.Reset(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
        if (!m_fd) m_fd.Reset(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
        const auto position = FilePosition(tracee, number);
        struct stat info;
        if (!m_fd || !position || *position < from.file || fstat(m_fd.Get(), &info) != 0 ||
            !S_ISREG(info.st_mode)) {
            m_fd.Reset();
            return;
        }
        m_skip = *position - from.file;
        m_at = std::min(*position, static_cast<std::uint64_t>(info.st_size)); // somebody may have cut it
    }

    bool IsOpen() const { return bool(m_fd); }
    // Whether all went well so far.
    bool IsWritten() const { return m_bWritten; }

    // Writes bytes of the queue, leaving out those that the file has.
    void Write(std::string_view bytes)
    {
        const std::size_t there = std::min<std::uint64_t>(m_skip, bytes.size());
        m_skip -= there;
        Append(bytes.substr(there));
    }
    // Writes a line of the reporter's own.
    void WriteOwn(const std::string& line)
    {
        Flush();
        char last = '\n';
        if (m_fd && m_at > 0 && pread(m_fd.Get(), &last, 1, static_cast<off_t>(m_at - 1)) == 1 &&
            last != '\n')
            Append("\n");
        Append(line);
    }
    void Flush()
    {
        const ssize_t done = m_fd && !m_pending.empty() ? pwrite(m_fd.Get(), m_pending.data(),
                                                                 m_pending.size(), static_cast<off_t>(m_at))
                                                        : 0;
        m_bWritten = m_bWritten && done == static_cast<ssize_t>(m_pending.size());
        m_at += m_pending.size();
        m_pending.clear();
    }

private:
    void Append(std::string_view bytes)
    {
        m_pending.append(bytes);
        if (m_pending.size() >= 64 * 1024) Flush();
    }

    UniqueFd m_fd;
    std::uint64_t m_skip = 0;
    std::uint64_t m_at = 0;
    std::string m_pending;
    bool m_bWritten = true;
};

// The lines in the report, as UTF-8.
class ReportLines
{
public:
    void Add(std::string_view piece, bool bLast)
    {
        if (m_text.size() + m_line.size() < kMostText) m_line.append(piece);
        if (!bLast) return;
        ++m_nLines;
        EndLine();
    }
    // After a line that isn't whole, too.
    void EndLine()
    {
        m_text += ToUtf8(m_line);
        if (!m_text.empty() && m_text.back() != '\n') m_text += '\n';
        m_line.clear();
    }
    void AddOwn(const std::string& line) { m_text += line + "\n"; }
    std::uint64_t Count() const { return m_nLines; }
    std::string Take() { return std::move(m_text); }

private:
    std::string m_text;
    std::string m_line;
    std::uint64_t m_nLines = 0;
};

std::string Stamp()
{
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    char text[32] = "";
    if (localtime_r(&now, &fields)) std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &fields);
    return text;
}

// A queue holds no more than what the process can write to.
std::uint64_t WritableMemory(const std::vector<Mapping>& maps)
{
    std::uint64_t size = 0;
    for (const Mapping& map : maps)
        if (map.bWrite) size += map.Size();
    return size;
}

std::string BringHome(const Tracee& tracee, const core::Record& record, std::uint64_t nMost,
                      const ReadMemory& read)
{
    const core::Position& from = record.positions[record.current % 2];
    LogFile file(tracee, record, from);
    ReportLines lines;
    if (from.lineBreak) file.Write("\n");
    const bool bWhole = WalkLines(from, nMost, read, [&](std::string_view piece, bool bLast) {
        file.Write(piece);
        lines.Add(piece, bLast);
    });
    if (!bWhole) {
        const std::string text = "the queue of the log is damaged: lines are missing here";
        file.WriteOwn("[" + Stamp() + "] 2 KXCrashReport: " + text + "\n");
        lines.EndLine();
        lines.AddOwn(text);
    }
    file.Flush();
    if (lines.Count() > 0 && file.IsOpen() && !file.IsWritten())
        lines.AddOwn("not all of these could be written to the log's file");
    return lines.Take();
}

} // namespace

std::string BringLinesHome(const Tracee& tracee, const std::vector<Mapping>& maps)
{
    const ReadMemory read = [&](std::uint64_t address, void* pTarget, std::size_t size) {
        return tracee.Read(address, pTarget, size);
    };
    std::string text;
    for (const auto& [address, record] : FindLogRecords(maps, read)) {
        const bool bForeign = record.file >= 0 && record.process != static_cast<std::uint64_t>(tracee.Pid());
        if (bForeign) continue; // the lines of a fork's parent
        text += BringHome(tracee, record, WritableMemory(maps), read);
        constexpr std::uint64_t kClosed = 1;
        tracee.Write(address + offsetof(core::Record, closed), &kClosed, sizeof(kClosed));
    }
    return text;
}

} // namespace kx::report

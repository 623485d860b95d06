#pragma once

#include "internal/Finding.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace kx::tool {

// How a command ends; what a script of a build asks for.
enum ExitCode
{
    Clean = 0, // nothing worse than a note
    Found = 1, // warnings or errors
    Failed = 2 // it couldn't be done, or was asked for wrongly
};

// The findings of checks, and their output.
class Findings
{
public:
    FindingSink Sink();
    void Add(Finding finding) { m_all.push_back(std::move(finding)); }
    bool HasErrors() const;
    const std::vector<Finding>& All() const { return m_all; }

    // Writes all to the standard output, in order of file and line: a line for each, as compilers do, and a
    // sum; or with `bJson` one JSON object. Files are named from `strDir`, the Linux path of what was
    // checked, on. The exit code.
    int Print(const std::string& strDir, bool bJson);

private:
    std::vector<Finding> m_all;
};

// The progress of long work, on the last line of a terminal; nothing in a pipe, and nothing of what is done
// sooner than one could read it.
class Progress
{
public:
    Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();
    void At(const std::string& what);

private:
    using Clock = std::chrono::steady_clock;

    const bool m_bTerminal;
    Clock::time_point m_next; // when the line is written again
    bool m_bWritten = false;
};

// "error", "warning" or "note".
const char* NameOf(Severity severity);
// A text of any bytes as UTF-8 that a terminal shows: control characters become "?", and what is no UTF-8
// U+FFFD.
std::string Printable(std::string_view text);

// The library's path of a Linux path, which may be relative; empty where it has none. With `bDirectory` it
// ends in a backslash.
CString LibraryPath(const std::string& path, bool bDirectory);

// Says on the standard error what went wrong: "kx: ..."; gives Failed.
int Complain(const std::string& text);

} // namespace kx::tool

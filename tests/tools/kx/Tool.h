#pragma once

#include "tests/support/Test.h"

namespace test {

struct Outcome
{
    int nCode = -1;
    std::vector<std::string> lines; // of the standard output
    std::string last;               // the sum, which is taken off the lines
};

// Gives the lines that a command of the shell prints, which runs in the directory.
inline std::vector<std::string> LinesOf(const TempDir& dir, const std::string& command, int* pnCode = nullptr)
{
    std::istringstream text(OutputOf("cd '" + dir.Path() + "' && " + command, pnCode));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

// Runs kx with a command line as the shell reads it, in the directory.
inline Outcome Kx(const TempDir& dir, const std::string& arguments)
{
    Outcome outcome;
    outcome.lines =
        LinesOf(dir, "env -u DISPLAY '" KX_TEST_BIN "/kx' " + arguments + " 2>&1", &outcome.nCode);
    if (outcome.lines.empty()) return outcome;
    outcome.last = outcome.lines.back();
    outcome.lines.pop_back();
    return outcome;
}

// kx at work, and the lines that it prints meanwhile.
class Running : Fixed
{
public:
    explicit Running(const std::string& arguments, const std::string& settings = "")
        : m_pipe(popen((settings + " '" KX_TEST_BIN "/kx' " + arguments).c_str(), "r"))
    {
    }

    // The next line; empty at the end.
    std::string Line()
    {
        std::string line;
        for (int ch; (ch = std::fgetc(m_pipe)) != EOF && ch != '\n';)
            line += static_cast<char>(ch);
        return line;
    }
    int End() { return pclose(m_pipe); }

private:
    FILE* const m_pipe;
};

} // namespace test

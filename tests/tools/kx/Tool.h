#pragma once

#include "tests/support/TempDir.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace test {

struct Outcome
{
    int nCode = -1;
    std::vector<std::string> lines; // of the standard output
    std::string last;               // the sum, which is taken off the lines
};

// Runs kx with a command line as the shell reads it, in the directory.
inline Outcome Kx(const TempDir& dir, const std::string& arguments)
{
    const std::string command =
        "cd '" + dir.Path() + "' && env -u DISPLAY '" KX_TEST_BIN "/kx' " + arguments + " 2>&1";
    FILE* const pipe = popen(command.c_str(), "r");
    Outcome outcome;
    std::string text;
    for (int ch; (ch = std::fgetc(pipe)) != EOF;)
        text += static_cast<char>(ch);
    const int nStatus = pclose(pipe);
    outcome.nCode = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        outcome.lines.push_back(text.substr(at, end - at));
        at = end == text.npos ? end : end + 1;
    }
    if (!outcome.lines.empty()) {
        outcome.last = outcome.lines.back();
        outcome.lines.pop_back();
    }
    return outcome;
}

} // namespace test

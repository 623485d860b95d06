#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace kx::report {

// The values that the crash filter hands over. Texts are in UTF-8.
struct CommandLine
{
    std::string app;
    std::string restart; // the restarted program's arguments
    std::string dump;    // the dump's path as the crashed process writes paths
    std::string contact;
    pid_t pid = 0;
    pid_t tid = 0;
    std::uint64_t exception = 0; // where its exception pointers are; 0: unknown
    bool bSend = false;
    bool bRestart = false;
};

// Reads "-sd -app[%s] -run[%s] -dmp[%s] -pid[%d] -tid[%d] -exp[%d] -inf[%s]" and the two flags behind it.
// Values may hold brackets and blanks: one ends where the next key begins, the last at the last bracket.
// Nothing for any other text.
std::optional<CommandLine> ParseCommandLine(std::string_view text);

} // namespace kx::report

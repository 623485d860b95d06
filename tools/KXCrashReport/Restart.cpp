#include "tools/KXCrashReport/Restart.h"

#include "platform/UniqueFd.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <poll.h>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace kx::report {

namespace {

constexpr const char* kRestarted = "KX_CRASH_RESTARTED";
constexpr int kLongestWait = 5 * 60 * 1000;

bool WasJustRestarted()
{
    const char* pszWhen = std::getenv(kRestarted);
    const long long nAge = std::time(nullptr) - (pszWhen ? std::atoll(pszWhen) : 0);
    return nAge >= 0 && nAge < 60;
}

// The path of the program's file, or of the one that has taken its place while it ran.
std::string ProgramOf(pid_t pid)
{
    constexpr std::string_view kGone = " (deleted)";
    std::error_code error;
    std::string path = std::filesystem::read_symlink("/proc/" + std::to_string(pid) + "/exe", error).native();
    if (path.ends_with(kGone) && !std::filesystem::exists(path, error))
        path.resize(path.size() - kGone.size());
    return path;
}

std::vector<std::string> Split(std::string_view text)
{
    std::vector<std::string> parts;
    while (!text.empty()) {
        const auto end = std::min(text.find(' '), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

[[noreturn]] void Run(const std::string& program, const std::string& arguments)
{
    std::vector<std::string> words = Split(arguments);
    words.insert(words.begin(), program);
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    setenv(kRestarted, std::to_string(std::time(nullptr)).c_str(), 1);
    execv(program.c_str(), argv.data());
    _exit(127);
}

} // namespace

void RestartAfter(pid_t pid, const std::string& arguments)
{
    const std::string program = ProgramOf(pid);
    const UniqueFd process(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
    if (program.empty() || !process || WasJustRestarted() || fork() != 0) return;
    setsid();
    pollfd watch{process.Get(), POLLIN, 0};
    poll(&watch, 1, kLongestWait);
    Run(program, arguments);
}

} // namespace kx::report

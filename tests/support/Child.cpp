#include "tests/support/Child.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

Child::Child(const std::string& name, std::vector<std::string> args, std::vector<std::string> env,
             bool captureError)
{
    std::array<int, 2> ends{-1, -1};
    if (captureError && pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    args.insert(args.begin(), std::string(KX_TEST_BIN) + "/" + name);
    std::vector<char*> argv;
    for (auto& arg : args)
        argv.push_back(arg.data());
    argv.push_back(nullptr);
    m_pid = fork();
    if (m_pid < 0) throw std::runtime_error("no process");
    if (m_pid == 0) {
        for (auto& setting : env)
            putenv(setting.data());
        if (captureError) dup2(ends[1], STDERR_FILENO);
        execv(argv[0], argv.data());
        _exit(127);
    }
    if (captureError) close(ends[1]);
    m_pipe = ends[0];
}

Child::~Child()
{
    if (m_pid > 0) {
        Kill();
        Wait();
    }
}

void Child::Kill()
{
    if (m_pid > 0) kill(m_pid, SIGKILL);
}

int Child::Wait()
{
    if (m_pipe >= 0) {
        std::array<char, 4096> block;
        for (ssize_t got;
             (got = read(m_pipe, block.data(), block.size())) > 0 || (got < 0 && errno == EINTR);)
            if (got > 0) m_error.append(block.data(), static_cast<std::size_t>(got));
        close(m_pipe);
        m_pipe = -1;
    }
    int status = 0;
    while (waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
    }
    m_pid = -1;
    if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
    return WEXITSTATUS(status) < 128 ? WEXITSTATUS(status) : -WEXITSTATUS(status);
}

} // namespace test

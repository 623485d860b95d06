#include "tests/support/Child.h"

#include <gtest/gtest.h>

namespace test {

namespace {

int EndOf(pid_t pid)
{
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
    return WEXITSTATUS(status) < 128 ? WEXITSTATUS(status) : -WEXITSTATUS(status);
}

} // namespace

pid_t Spawn(std::vector<std::string> args, std::vector<std::string> env, const std::function<void()>& prepare)
{
    std::vector<char*> argv;
    for (auto& arg : args)
        argv.push_back(arg.data());
    argv.push_back(nullptr);
    const pid_t pid = fork();
    if (pid < 0) throw std::runtime_error("no process");
    if (pid > 0) return pid;
    for (auto& setting : env)
        putenv(setting.data());
    prepare();
    execvp(argv[0], argv.data());
    _exit(127);
}

Child::Child(const std::string& name, std::vector<std::string> args, std::vector<std::string> env,
             bool captureError)
{
    std::array<int, 2> ends{-1, -1};
    if (captureError && pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    args.insert(args.begin(), std::string(KX_TEST_BIN) + "/" + name);
    m_pid = Spawn(std::move(args), std::move(env), [&] {
        if (captureError) dup2(ends[1], STDERR_FILENO);
    });
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

Child::Child(const std::function<int()>& body) : m_pid(fork())
{
    if (m_pid == 0) _exit(body());
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
    return EndOf(std::exchange(m_pid, -1));
}

std::string RunChild(const std::string& name, std::vector<std::string> args, std::vector<std::string> env)
{
    Child child(name, std::move(args), std::move(env), true);
    EXPECT_EQ(child.Wait(), 0) << child.ErrorText();
    return child.ErrorText();
}

std::string OutputOf(const std::string& command, int* pnCode)
{
    FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    for (int ch; (ch = std::fgetc(pipe)) != EOF;)
        text += static_cast<char>(ch);
    const int nStatus = pclose(pipe);
    if (pnCode) *pnCode = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    return text;
}

int InFork(const std::function<int()>& body)
{
    return Child(body).Wait();
}

} // namespace test

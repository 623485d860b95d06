#pragma once

#include "tests/support/Standard.h"

#include <sys/types.h>

namespace test {

// Starts a program with these arguments, its name first, and settings. The new process runs `prepare` ahead
// of it.
inline pid_t Spawn(std::vector<std::string> args, std::vector<std::string> env,
                   const std::function<void()>& prepare)
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

// Waits for the end of a process and returns its exit code, or 128 plus the signal that ended it. A code from
// 128 on is negative, so that no exit passes for the end by a signal.
inline int EndOf(pid_t pid)
{
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
    return WEXITSTATUS(status) < 128 ? WEXITSTATUS(status) : -WEXITSTATUS(status);
}

// A process of its own: a child program of the tests (a ...Child.cpp), by the name of its file.
class Child : Fixed
{
public:
    // Starts it. `env` adds "NAME=value" settings. With `captureError` its standard error is collected.
    Child(const std::string& name, std::vector<std::string> args, std::vector<std::string> env = {},
          bool captureError = false)
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
    // A fork instead, which runs something, ends with its result and does nothing else.
    explicit Child(const std::function<int()>& body) : m_pid(fork())
    {
        if (m_pid == 0) _exit(body());
    }
    ~Child()
    {
        if (m_pid <= 0) return;
        Kill();
        Wait();
    }

    pid_t Pid() const { return m_pid; }
    void Kill()
    {
        if (m_pid > 0) kill(m_pid, SIGKILL);
    }
    // Waits for its end and tells it as EndOf does.
    int Wait()
    {
        std::array<char, 4096> block;
        for (ssize_t got = 1; m_pipe >= 0 && (got > 0 || errno == EINTR);) {
            got = read(m_pipe, block.data(), block.size());
            if (got == 0) break;
            if (got > 0) m_error.append(block.data(), static_cast<std::size_t>(got));
        }
        if (m_pipe >= 0) close(std::exchange(m_pipe, -1));
        return EndOf(std::exchange(m_pid, -1));
    }
    // Its standard error; complete after Wait.
    const std::string& ErrorText() const { return m_error; }

private:
    pid_t m_pid = -1;
    int m_pipe = -1;
    std::string m_error;
};

// Runs a child program, which has to succeed, and gives what it wrote to its standard error.
inline std::string RunChild(const std::string& name, std::vector<std::string> args,
                            std::vector<std::string> env = {})
{
    Child child(name, std::move(args), std::move(env), true);
    if (child.Wait() != 0) throw std::runtime_error(name + " fails: " + child.ErrorText());
    return child.ErrorText();
}

// Gives the text that a command of the shell prints, and its exit code; -1 if a signal ended it.
inline std::string OutputOf(const std::string& command, int* pnCode = nullptr)
{
    FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    for (int ch; (ch = std::fgetc(pipe)) != EOF;)
        text += static_cast<char>(ch);
    const int nStatus = pclose(pipe);
    if (pnCode) *pnCode = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    return text;
}

// Runs something in a fork, and tells its end as EndOf does.
inline int InFork(const std::function<int()>& body)
{
    return Child(body).Wait();
}

} // namespace test

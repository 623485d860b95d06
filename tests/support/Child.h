#pragma once

#include "tests/support/Fixed.h"
#include "tests/support/Standard.h"

#include <sys/types.h>

namespace test {

// Starts a program with these arguments, its name first, and settings. The new process runs `prepare` ahead
// of it.
pid_t Spawn(std::vector<std::string> args, std::vector<std::string> env,
            const std::function<void()>& prepare);

// A process of its own: a child program of the tests (a ...Child.cpp), by the name of its file.
class Child : Fixed
{
public:
    // Starts it. `env` adds "NAME=value" settings. With `captureError` its standard error is collected.
    Child(const std::string& name, std::vector<std::string> args, std::vector<std::string> env = {},
          bool captureError = false);
    // A fork instead, which runs something, ends with its result and does nothing else.
    explicit Child(const std::function<int()>& body);
    ~Child();

    pid_t Pid() const { return m_pid; }
    void Kill();
    // Waits for its end and returns its exit code, or 128 plus the signal that ended it. A code from 128 on
    // is negative, so that no exit passes for the end by a signal.
    int Wait();
    // Its standard error; complete after Wait.
    const std::string& ErrorText() const { return m_error; }

private:
    pid_t m_pid = -1;
    int m_pipe = -1;
    std::string m_error;
};

// Runs a child program, which has to succeed, and gives what it wrote to its standard error.
std::string RunChild(const std::string& name, std::vector<std::string> args,
                     std::vector<std::string> env = {});

// Gives the text that a command of the shell prints, and its exit code; -1 if a signal ended it.
std::string OutputOf(const std::string& command, int* pnCode = nullptr);

// Runs something in a fork, and tells its end as Child::Wait does.
int InFork(const std::function<int()>& body);

} // namespace test

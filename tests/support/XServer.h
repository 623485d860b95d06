#pragma once

#include "tests/support/Fixed.h"
#include "tests/support/Standard.h"

#include <sys/types.h>

namespace test {

// A program of the system's, killed and waited for at the end.
class Program : Fixed
{
public:
    explicit Program(std::vector<std::string> args, std::vector<std::string> env = {});
    ~Program() { Kill(); }

    // Ends it, and returns when it has ended.
    void Kill();
    // It does nothing until it is killed.
    void Stop();

private:
    pid_t m_pid;
};

// Through which a program tells a line when it has started.
struct Pipe : Fixed
{
    Pipe();
    ~Pipe();
    std::string ReadLine();
    int ends[2];
};

// An X server whose screen nobody sees, on a display that was free.
class XServer
{
public:
    explicit XServer(const std::string& screen = "640x480x24", std::vector<std::string> options = {});

    // Gives the name that DISPLAY has for it.
    const std::string& Name() const { return m_name; }
    void Kill() { m_program.Kill(); }
    void Stop() { m_program.Stop(); }

private:
    Pipe m_pipe; // the server tells its display's number
    Program m_program;
    std::string m_name;
};

} // namespace test

#pragma once

#include "tests/support/Child.h"

#include <sys/prctl.h>

namespace test {

// A program of the system's, killed and waited for at the end.
class Program : Fixed
{
public:
    explicit Program(std::vector<std::string> args, std::vector<std::string> env = {})
        : m_pid(Spawn(std::move(args), std::move(env), [] {
              prctl(PR_SET_PDEATHSIG, SIGTERM); // a test that crashes leaves none behind
              const int nowhere = open("/dev/null", O_RDWR);
              dup2(nowhere, STDOUT_FILENO);
              dup2(nowhere, STDERR_FILENO);
          }))
    {
    }
    ~Program() { Kill(); }

    // Ends it, and returns when it has ended.
    void Kill()
    {
        if (m_pid <= 0) return;
        kill(m_pid, SIGTERM);
        kill(m_pid, SIGCONT);
        EndOf(std::exchange(m_pid, -1));
    }
    // It does nothing until it is killed.
    void Stop()
    {
        kill(m_pid, SIGSTOP);
        siginfo_t stopped;
        waitid(P_PID, static_cast<id_t>(m_pid), &stopped, WSTOPPED | WNOWAIT);
    }

private:
    pid_t m_pid;
};

// Through which a program tells a line when it has started.
struct Pipe : Fixed
{
    Pipe()
    {
        if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    }
    ~Pipe()
    {
        close(ends[0]);
        if (ends[1] >= 0) close(ends[1]);
    }
    std::string ReadLine()
    {
        close(std::exchange(ends[1], -1)); // the program's copy alone is left, and ends with it
        std::string line;
        for (char ch = 0; read(ends[0], &ch, 1) == 1 && ch != '\n';)
            line += ch;
        if (line.empty()) throw std::runtime_error("a program doesn't start");
        return line;
    }

    int ends[2];
};

// An X server whose screen nobody sees, on a display that was free.
class XServer
{
public:
    explicit XServer(const std::string& screen = "640x480x24", const std::vector<std::string>& options = {})
        : m_program(Command(screen, options)), m_name(":" + m_pipe.ReadLine())
    {
    }

    // Gives the name that DISPLAY has for it.
    const std::string& Name() const { return m_name; }
    void Kill() { m_program.Kill(); }
    void Stop() { m_program.Stop(); }

private:
    std::vector<std::string> Command(const std::string& screen, const std::vector<std::string>& options) const
    {
        std::vector<std::string> args{"Xvfb",      "-displayfd", std::to_string(m_pipe.ends[1]),
                                      "-screen",   "0",          screen,
                                      "-nolisten", "tcp",        "-noreset"};
        args.insert(args.end(), options.begin(), options.end());
        return args;
    }

    Pipe m_pipe; // the server tells its display's number
    Program m_program;
    std::string m_name;
};

} // namespace test

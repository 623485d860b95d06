#include "tests/support/XServer.h"

#include "tests/support/Child.h"

#include <poll.h>
#include <sys/prctl.h>

namespace test {

namespace {

constexpr int kStartLimit = 60'000; // milliseconds

std::vector<std::string> Command(const std::string& screen, int fd, const std::vector<std::string>& options)
{
    std::vector<std::string> args{"Xvfb",      "-displayfd", std::to_string(fd), "-screen", "0", screen,
                                  "-nolisten", "tcp",        "-noreset"};
    args.insert(args.end(), options.begin(), options.end());
    return args;
}

} // namespace

Program::Program(std::vector<std::string> args, std::vector<std::string> env)
    : m_pid(Spawn(std::move(args), std::move(env), [] {
          prctl(PR_SET_PDEATHSIG, SIGTERM); // a test that crashes leaves none behind
          const int nowhere = open("/dev/null", O_RDWR);
          dup2(nowhere, STDOUT_FILENO);
          dup2(nowhere, STDERR_FILENO);
      }))
{
}

void Program::Kill()
{
    if (m_pid <= 0) return;
    kill(m_pid, SIGTERM);
    kill(m_pid, SIGCONT);
    while (waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    m_pid = -1;
}

void Program::Stop()
{
    kill(m_pid, SIGSTOP);
    siginfo_t stopped;
    waitid(P_PID, static_cast<id_t>(m_pid), &stopped, WSTOPPED | WNOWAIT);
}

Pipe::Pipe()
{
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
}

Pipe::~Pipe()
{
    close(ends[0]);
    if (ends[1] >= 0) close(ends[1]);
}

std::string Pipe::ReadLine()
{
    close(std::exchange(ends[1], -1)); // the program's copy alone is left, and ends with it
    std::string line;
    for (char ch = 0; ch != '\n'; line += ch) {
        pollfd ready{ends[0], POLLIN, 0};
        if (poll(&ready, 1, kStartLimit) != 1 || read(ends[0], &ch, 1) != 1)
            throw std::runtime_error("a program doesn't start");
    }
    line.pop_back();
    return line;
}

XServer::XServer(const std::string& screen, std::vector<std::string> options)
    : m_program(Command(screen, m_pipe.ends[1], options)), m_name(":" + m_pipe.ReadLine())
{
}

} // namespace test

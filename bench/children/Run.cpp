#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

// Runs a program without input and output and prints its processor time in microseconds and the peak of its
// resident memory in kilobytes: `kx_bench_run PROGRAM ARGUMENT...`. A child's peak counts the memory of the
// process that it is started from, so this one is linked statically and has next to none.

namespace {

long long Microseconds(const timeval& time)
{
    return time.tv_sec * 1'000'000LL + time.tv_usec;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) return 2;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO})
        posix_spawn_file_actions_addopen(&actions, fd, "/dev/null", O_RDWR, 0);
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[1], &actions, nullptr, argv + 1, environ) != 0) return 1;
    int status = 0;
    rusage used{};
    if (wait4(pid, &status, 0, &used) != pid || status != 0) return 1;
    std::printf("%lld %ld\n", Microseconds(used.ru_utime) + Microseconds(used.ru_stime), used.ru_maxrss);
    return 0;
}

// Runs a command several times and prints what it cost on one line: the mean user plus system
// time and the mean wall time of a run, in microseconds, and the largest peak memory, in KiB.
//
//     measure COUNT STDIN STDOUT PROGRAM [ARGUMENT ...]
//
// A program of its own because the kernel counts what the starting process holds towards the
// peak of the started one: a Python interpreter would be most of what a small run needs.

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <err.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

namespace
{

double microseconds(const timeval &time)
{
    return double(time.tv_sec) * 1e6 + double(time.tv_usec);
}

/// Runs \a command with its standard streams on the two files; the output file begins empty.
rusage run(char **command, const char *input, const char *output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, input, O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, output, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_t child = 0;
    errno = posix_spawnp(&child, command[0], &actions, nullptr, command, environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage usage = {};
    if (errno || wait4(child, &status, 0, &usage) < 0)
        err(1, "%s", command[0]);
    if (status != 0)
        errx(1, "%s: wait status %#x", command[0], unsigned(status));
    return usage;
}

}  // namespace

int main(int argc, char **argv)
{
    using Clock = std::chrono::steady_clock;
    const int count = argc < 5 ? 0 : atoi(argv[1]);
    if (count < 1)
        errx(2, "COUNT STDIN STDOUT PROGRAM [ARGUMENT ...]");
    double cpu = 0;
    long peak = 0;
    const Clock::time_point before = Clock::now();
    for (int i = 0; i < count; ++i) {
        const rusage usage = run(argv + 4, argv[2], argv[3]);
        cpu += microseconds(usage.ru_utime) + microseconds(usage.ru_stime);
        peak = std::max(peak, usage.ru_maxrss);
    }
    const std::chrono::duration<double, std::micro> wall = Clock::now() - before;
    printf("%.1f %.1f %ld\n", cpu / count, wall.count() / count, peak);
    return 0;
}

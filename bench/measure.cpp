// Runs a command several times and prints what it cost on one line: the mean user plus system
// time and the mean wall time of a run, in microseconds, and the largest peak memory, in KiB.
//
//     measure COUNT STDIN STDOUT PROGRAM [ARGUMENT ...]
//
// A program of its own because the kernel counts what the starting process holds towards the
// peak of the started one: a Python interpreter would be most of what a small run needs.

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

extern char **environ;

namespace
{

struct Cost {
    long long cpuMicroseconds = 0;
    long long wallMicroseconds = 0;
    long peakKiB = 0;
};

long long microseconds(const timeval &time)
{
    return time.tv_sec * 1'000'000LL + time.tv_usec;
}

[[noreturn]] void fail(const char *program, const char *what, long number)
{
    fprintf(stderr, "measure: %s: %s %ld\n", program, what, number);
    exit(1);
}

/// Starts \a command with its standard streams on the two files; the output file begins empty.
pid_t start(char **command, const char *input, const char *output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, input, O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, output, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_t child = 0;
    const int error = posix_spawnp(&child, command[0], &actions, nullptr, command, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error)
        fail(command[0], strerror(error), error);
    return child;
}

Cost run(char **command, const char *input, const char *output)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point before = Clock::now();
    const pid_t child = start(command, input, output);
    int status = 0;
    rusage usage = {};
    while (wait4(child, &status, 0, &usage) < 0) {
        if (errno != EINTR)
            fail(command[0], strerror(errno), errno);
    }
    const Clock::duration wall = Clock::now() - before;
    if (WIFSIGNALED(status))
        fail(command[0], "killed by signal", WTERMSIG(status));
    if (WEXITSTATUS(status) != 0)
        fail(command[0], "exit status", WEXITSTATUS(status));
    return {microseconds(usage.ru_utime) + microseconds(usage.ru_stime),
            std::chrono::duration_cast<std::chrono::microseconds>(wall).count(), usage.ru_maxrss};
}

}  // namespace

int main(int argc, char **argv)
{
    const int count = argc < 5 ? 0 : atoi(argv[1]);
    if (count < 1) {
        fprintf(stderr, "measure: COUNT STDIN STDOUT PROGRAM [ARGUMENT ...]\n");
        return 2;
    }
    Cost sum;
    for (int i = 0; i < count; ++i) {
        const Cost cost = run(argv + 4, argv[2], argv[3]);
        sum.cpuMicroseconds += cost.cpuMicroseconds;
        sum.wallMicroseconds += cost.wallMicroseconds;
        if (sum.peakKiB < cost.peakKiB)
            sum.peakKiB = cost.peakKiB;
    }
    printf("%.1f %.1f %ld\n", double(sum.cpuMicroseconds) / count,
           double(sum.wallMicroseconds) / count, sum.peakKiB);
    return 0;
}

// Loaded in front of the C library into the command under test, where FAULT_AT is the number of the
// first call for memory that fails, counted from main on; with FAULT_LASTS all later ones fail too.
// Then the file FAULT_MARK is made.

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace
{

using Main = int(int, char **, char **);

const char *mark = nullptr;  ///< null up to main
long remaining = 0;
bool isLasting = false;
Main *realMain = nullptr;

bool fails()
{
    if (!mark || --remaining > 0 || (remaining < 0 && !isLasting))
        return false;
    close(open(mark, O_CREAT | O_WRONLY, 0600));
    errno = ENOMEM;
    return true;
}

int mainWithFaults(int argc, char **argv, char **environment)
{
    const char *at = std::getenv("FAULT_AT");
    remaining = at ? std::atol(at) : 0;
    isLasting = std::getenv("FAULT_LASTS");
    mark = std::getenv("FAULT_MARK");
    return realMain(argc, argv, environment);
}

}  // namespace

// These have the names that the C library gives them.
// NOLINTBEGIN(bugprone-macro-*,bugprone-reserved-*,readability-inconsistent-*)
#define CAN_FAIL(name, parameters, arguments)                                                      \
    void *__libc_##name parameters;                                                                \
    void *name parameters                                                                          \
    {                                                                                              \
        return fails() ? nullptr : __libc_##name arguments;                                        \
    }

extern "C" {

CAN_FAIL(malloc, (std::size_t size), (size))
CAN_FAIL(calloc, (std::size_t count, std::size_t size), (count, size))
CAN_FAIL(realloc, (void *memory, std::size_t size), (memory, size))

int __libc_start_main(Main *main, int argc, char **argv, void (*init)(), void (*fini)(),
                      void (*loaderFini)(), void *stackEnd)
{
    realMain = main;
    auto *start =
        reinterpret_cast<decltype(&__libc_start_main)>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(mainWithFaults, argc, argv, init, fini, loaderFini, stackEnd);
}
}
// NOLINTEND(bugprone-macro-*,bugprone-reserved-*,readability-inconsistent-*)

// Loaded in front of the C library into the command under test. FAULT is what fails, "memory" or
// "io", a '+' if every later call is to fail as well, a ':' and the number of the first call that
// does, counted from the entry of main; then the file FAULT_MARK is made. With "short" no read
// gives more than one byte.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using Main = int(int, char **, char **);

char kind[32] = "";
bool isLasting = false;
long remaining = 0;
Main *realMain = nullptr;
int lastDescriptor = -1;

const char *setting(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

bool fails(const char *what)
{
    if (std::strcmp(kind, what) != 0 || --remaining > 0 || (remaining < 0 && !isLasting))
        return false;
    close(open(setting("FAULT_MARK"), O_CREAT | O_WRONLY, 0600));
    errno = *what == 'm' ? ENOMEM : EIO;
    return true;
}

int mainWithFaults(int argc, char **argv, char **environment)
{
    const char *fault = setting("FAULT");
    std::sscanf(fault, "%31[a-z]", kind);
    const char *number = fault + std::strcspn(fault, ":+");
    isLasting = *number == '+';
    remaining = std::atol(number + (isLasting ? 2 : 1));
    return realMain(argc, argv, environment);
}

/// A stream's cookie is the place that its descriptor has in here.
int descriptors[1024];

int descriptorOf(void *cookie)
{
    return *static_cast<int *>(cookie);
}

ssize_t readSome(void *cookie, char *bytes, std::size_t size)
{
    const bool isShort = std::strcmp(kind, "short") == 0 && size > 0;
    return fails("io") ? -1 : read(descriptorOf(cookie), bytes, isShort ? 1 : size);
}

ssize_t writeSome(void *cookie, const char *bytes, std::size_t size)
{
    const std::size_t possible = fails("io") ? size / 2 : size;
    return write(descriptorOf(cookie), bytes, possible);
}

int seekTo(void *cookie, off64_t *offset, int whence)
{
    *offset = fails("io") ? -1 : lseek(descriptorOf(cookie), *offset, whence);
    return *offset < 0 ? -1 : 0;
}

int closeIt(void *cookie)
{
    const bool isFailing = fails("io");
    return close(descriptorOf(cookie)) != 0 || isFailing ? -1 : 0;
}

}  // namespace

// These have the names that the C library gives them.
// NOLINTBEGIN(bugprone-macro-parentheses,bugprone-reserved-identifier)
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
#define CAN_LACK_MEMORY(name, parameters, arguments)                                               \
    void *__libc_##name parameters;                                                                \
    void *name parameters                                                                          \
    {                                                                                              \
        return fails("memory") ? nullptr : __libc_##name arguments;                                \
    }

#define CAN_FAIL(result, name, parameters, arguments)                                              \
    static auto *const next_##name =                                                               \
        reinterpret_cast<result(*) parameters>(dlsym(RTLD_NEXT, #name));                           \
    result name parameters noexcept                                                                \
    {                                                                                              \
        return fails("io") ? -1 : next_##name arguments;                                           \
    }

extern "C" {

CAN_LACK_MEMORY(malloc, (std::size_t size), (size))
CAN_LACK_MEMORY(calloc, (std::size_t count, std::size_t size), (count, size))
CAN_LACK_MEMORY(realloc, (void *memory, std::size_t size), (memory, size))

CAN_FAIL(int, rename, (const char *from, const char *to), (from, to))
CAN_FAIL(int, renameat2,
         (int fromIn, const char *from, int toIn, const char *to, unsigned int flags),
         (fromIn, from, toIn, to, flags))
CAN_FAIL(int, stat, (const char *name, struct stat *status), (name, status))
CAN_FAIL(int, fstat, (int descriptor, struct stat *status), (descriptor, status))
CAN_FAIL(int, fchmod, (int descriptor, mode_t mode), (descriptor, mode))
CAN_FAIL(int, access, (const char *name, int mode), (name, mode))
CAN_FAIL(ssize_t, readlink, (const char *name, char *link, std::size_t size), (name, link, size))

int __libc_start_main(Main *main, int argc, char **argv, void (*init)(), void (*fini)(),
                      void (*loaderFini)(), void *stackEnd)
{
    realMain = main;
    auto *start =
        reinterpret_cast<decltype(&__libc_start_main)>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(mainWithFaults, argc, argv, init, fini, loaderFini, stackEnd);
}

// The C library's streams do not call its functions by name, so they get those of this file.
FILE *fopen(const char *name, const char *mode)
{
    const int create = std::strchr(mode, 'x') ? O_CREAT | O_EXCL : O_CREAT | O_TRUNC;
    const int flags = *mode == 'w' ? O_WRONLY | create : O_RDONLY;
    lastDescriptor = fails("io") ? -1 : open(name, flags, 0666);
    if (lastDescriptor < 0)
        return nullptr;
    descriptors[lastDescriptor] = lastDescriptor;
    FILE *stream = fopencookie(&descriptors[lastDescriptor], *mode == 'w' ? "wb" : "rb",
                               {readSome, writeSome, seekTo, closeIt});
    // The C library has the memory for a stream before it makes a file.
    if (!stream && (flags & O_EXCL))
        unlink(name);
    return stream;
}

int fileno(FILE *)
{
    return lastDescriptor;
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
// NOLINTEND(bugprone-macro-parentheses,bugprone-reserved-identifier)

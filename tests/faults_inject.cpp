// Loaded in front of the C library into the command under test. FAULT is what fails, "memory" or
// "io", a '+' if every later call is to fail too, a ':' and the number of the first call that
// does, counted from main on; then the file FAULT_MARK is made. With "short" no read gives more
// than one byte.

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
const char *mark = "";
long remaining = 0;
Main *realMain = nullptr;
int lastDescriptor = -1;

bool fails(const char *what)
{
    const bool isLasting = std::strchr(kind, '+');
    if (std::strncmp(kind, what, std::strlen(what)) != 0 || --remaining > 0 ||
        (remaining < 0 && !isLasting))
        return false;
    close(open(mark, O_CREAT | O_WRONLY, 0600));
    errno = *what == 'm' ? ENOMEM : EIO;
    return true;
}

int mainWithFaults(int argc, char **argv, char **environment)
{
    std::sscanf(std::getenv("FAULT"), "%31[a-z+]:%ld", kind, &remaining);
    mark = std::getenv("FAULT_MARK");
    return realMain(argc, argv, environment);
}

/// A stream's cookie is the place that its descriptor has in here.
int descriptors[1024];

ssize_t readSome(void *cookie, char *bytes, std::size_t size)
{
    const bool isShort = std::strcmp(kind, "short") == 0 && size > 0;
    return fails("io") ? -1 : read(*static_cast<int *>(cookie), bytes, isShort ? 1 : size);
}

ssize_t writeSome(void *cookie, const char *bytes, std::size_t size)
{
    return write(*static_cast<int *>(cookie), bytes, fails("io") ? size / 2 : size);
}

int closeIt(void *cookie)
{
    const bool isFailing = fails("io");
    return close(*static_cast<int *>(cookie)) != 0 || isFailing ? -1 : 0;
}

}  // namespace

// These have the names that the C library gives them.
// NOLINTBEGIN(bugprone-macro-*,bugprone-reserved-*,readability-inconsistent-*)
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
    const int create = O_WRONLY | O_CREAT | (std::strchr(mode, 'x') ? O_EXCL : O_TRUNC);
    const int flags = *mode == 'w' ? create : O_RDONLY;
    lastDescriptor = fails("io") ? -1 : open(name, flags, 0666);
    if (lastDescriptor < 0)
        return nullptr;
    descriptors[lastDescriptor] = lastDescriptor;
    FILE *stream = fopencookie(&descriptors[lastDescriptor], *mode == 'w' ? "wb" : "rb",
                               {readSome, writeSome, nullptr, closeIt});
    // The C library has the memory for a stream before it makes a file.
    if (!stream && (flags & O_EXCL))
        unlink(name);
    return stream;
}

// Without a buffer, a stream with a cookie would read byte by byte.
int setvbuf(FILE *, char *, int, std::size_t)
{
    return 0;
}

int fileno(FILE *)
{
    return lastDescriptor;
}
}
// NOLINTEND(bugprone-macro-*,bugprone-reserved-*,readability-inconsistent-*)

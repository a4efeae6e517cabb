#include "executablepath.h"

#include <cstring>

#if defined(__APPLE__)
#include <crt_externs.h>
#include <mach-o/dyld.h>
#else
#include <cerrno>
#include <sys/auxv.h>
#endif

QString executablePath()
{
    constexpr std::size_t largestSize = 1024;
#if defined(__APPLE__)
    char path[largestSize];
    uint32_t size = sizeof path;
    if (_NSGetExecutablePath(path, &size) == 0)
        return QString::fromLatin1(path);
    return QString::fromLatin1((*_NSGetArgv())[0]);
#else
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the vector has nothing but integers
    const auto *path = reinterpret_cast<const char *>(getauxval(AT_EXECFN));
    if (path && std::strlen(path) < largestSize)
        return QString::fromLatin1(path);
    return QString::fromLatin1(program_invocation_name);
#endif
}

#include "executablepath.h"

#include <cstring>

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#elif defined(__linux__)
#include <sys/auxv.h>
#endif

QString executablePath(const char *programName)
{
    constexpr std::size_t largestSize = 1024;
#if defined(__APPLE__)
    char path[largestSize];
    uint32_t size = sizeof path;
    if (_NSGetExecutablePath(path, &size) == 0)
        return QString::fromLatin1(path);
#elif defined(__linux__)
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the vector has nothing but integers
    const auto *path = reinterpret_cast<const char *>(getauxval(AT_EXECFN));
    if (path && std::strlen(path) < largestSize)
        return QString::fromLatin1(path);
#endif
    return QString::fromLatin1(programName);
}

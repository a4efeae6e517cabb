#include "installation.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <unistd.h>
#include <vector>

#if defined(__APPLE__)
#include <crt_externs.h>
#include <mach-o/dyld.h>
#else
#include <cerrno>
#include <sys/auxv.h>
#endif

namespace
{

struct Free {
    void operator()(char *text) const { std::free(text); }
};
using CText = std::unique_ptr<char, Free>;

std::string &stored()
{
    static std::string directory;
    return directory;
}

/// The components of \a path without "." and empty ones, ".." taking the one before it away.
std::vector<std::string_view> components(std::string_view path)
{
    std::vector<std::string_view> parts;
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(part.size() + 1, path.size()));
        if (part == ".." && !parts.empty())
            parts.pop_back();
        else if (!part.empty() && part != "." && part != "..")
            parts.push_back(part);
    }
    return parts;
}

}  // namespace

std::string executablePath()
{
    constexpr std::size_t largestSize = 1024;
#if defined(__APPLE__)
    char path[largestSize];
    uint32_t size = sizeof path;
    return _NSGetExecutablePath(path, &size) == 0 ? path : (*_NSGetArgv())[0];
#else
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the vector has nothing but integers
    const auto *path = reinterpret_cast<const char *>(getauxval(AT_EXECFN));
    return path && std::strlen(path) < largestSize ? path : program_invocation_name;
#endif
}

void initInstallationDirectory(const char *executablePath, int levelsUp)
{
    assert(executablePath && levelsUp >= 0);
    std::string path = executablePath;
    if (!path.starts_with('/')) {
        const CText current(getcwd(nullptr, 0));
        path = std::string(current ? current.get() : "").append("/").append(path);
    }
    path.erase(path.rfind('/'));
    const std::vector<std::string_view> parts = components(path);
    std::string directory = "/";
    for (std::size_t i = 0; i + static_cast<std::size_t>(levelsUp) < parts.size(); ++i)
        directory.append(parts[i]).append("/");
    const CText canonical(realpath(directory.c_str(), nullptr));
    stored() = canonical ? canonical.get() : "";
}

std::string installationDirectory()
{
    return stored();
}

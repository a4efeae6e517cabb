#include "installationdirectory.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace
{

struct Free {
    void operator()(char *text) const { std::free(text); }
};
using CText = std::unique_ptr<char, Free>;

QString &stored()
{
    static QString directory;
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

void initInstallationDirectory(const char *executablePath, int levelsUp)
{
    std::string path = executablePath;
    if (!path.starts_with('/')) {
        const CText current(getcwd(nullptr, 0));
        path = std::string(current ? current.get() : "") + '/' + path;
    }
    const std::vector<std::string_view> parts = components(path);
    std::string directory = "/";
    for (std::size_t i = 0; i + static_cast<std::size_t>(levelsUp) + 1 < parts.size(); ++i)
        directory.append(parts[i]).append("/");
    const CText canonical(realpath(directory.c_str(), nullptr));
    stored() = QString::fromLatin1(canonical ? canonical.get() : "");
}

QString installationDirectory()
{
    return stored();
}

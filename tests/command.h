#pragma once

#include <string>
#include <vector>

/// What one run of the built command did.
struct CommandResult {
    int status = 0;  ///< the exit status, or 128 and the signal that ended it
    std::string output;
    std::string error;
};

/// Runs \a arguments (the program first) in \a directory to its end.
CommandResult runCommand(const std::vector<std::string> &arguments, const std::string &directory);

/// A directory of its own for one test, removed with all that is in it.
class ScratchDirectory
{
public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;

    const std::string &path() const { return directory; }
    std::string file(const std::string &name) const { return directory + '/' + name; }

    /// Makes the file and the directories that lead to it.
    void write(const std::string &name, const std::string &content) const;

private:
    std::string directory;
};

/// The content of a file; "(no file)" when there is none.
std::string readFile(const std::string &path);

#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// The content of a file; "(no file)" when there is none.
inline std::string readFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(no file)";
}

/// A directory of its own for one test, removed with all that is in it.
class ScratchDirectory
{
public:
    ScratchDirectory()
    {
        std::string name = std::filesystem::temp_directory_path() / "xmlpp-test-XXXXXX";
        directory = mkdtemp(name.data());
    }
    ~ScratchDirectory() { std::filesystem::remove_all(directory); }
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;

    const std::string &path() const { return directory; }
    std::string file(const std::string &name) const { return directory + '/' + name; }

    /// Makes the file and the directories that lead to it.
    void write(const std::string &name, const std::string &content) const
    {
        std::filesystem::create_directories(std::filesystem::path(file(name)).parent_path());
        std::ofstream(file(name), std::ios::binary) << content;
    }

private:
    std::string directory;
};

/// What one run of a program did.
struct CommandResult {
    int status = 0;  ///< the exit status, or 128 and the signal that ended it
    std::string output;
    std::string error;
};

/// Runs \a arguments (the program first) in \a directory to its end, for 60 seconds at most.
inline CommandResult runCommand(std::vector<std::string> arguments, const std::string &directory)
{
    const ScratchDirectory scratch;
    const std::string output = scratch.file("stdout");
    const std::string error = scratch.file("stderr");
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);  // goes on counting in the program
        std::vector<char *> argv;
        argv.reserve(arguments.size() + 1);
        for (std::string &argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        if (chdir(directory.c_str()) == 0 && freopen(output.c_str(), "wb", stdout) &&
            freopen(error.c_str(), "wb", stderr))
            execv(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), readFile(output),
            readFile(error)};
}

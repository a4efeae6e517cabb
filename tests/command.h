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

/// Starts \a arguments (the program first) in \a directory, for 60 seconds at most. Both standard
/// streams go into the file \a prints. The new process calls \a prepare before it becomes the program.
template <typename Prepare>
pid_t startCommand(std::vector<std::string> arguments, const std::string &directory,
                   const std::string &prints, Prepare prepare)
{
    const pid_t child = fork();
    if (child != 0)
        return child;
    alarm(60);  // goes on counting in the program
    std::vector<char *> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string &argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    prepare();
    if (chdir(directory.c_str()) == 0 && freopen(prints.c_str(), "wb", stdout) &&
        dup2(STDOUT_FILENO, STDERR_FILENO) >= 0)
        execv(argv[0], argv.data());
    _exit(127);
}

/// What one run of a program did.
struct CommandResult {
    int status;  ///< the exit status, or 128 and the signal that ended it
    std::string prints;
};

/// The same from what waitpid() says of it.
inline CommandResult resultOf(int status, const std::string &prints)
{
    return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), readFile(prints)};
}

inline CommandResult runCommand(const std::vector<std::string> &arguments,
                                const std::string &directory)
{
    const ScratchDirectory scratch;
    const std::string prints = scratch.file("prints");
    int status = 0;
    waitpid(startCommand(arguments, directory, prints, [] {}), &status, 0);
    return resultOf(status, prints);
}

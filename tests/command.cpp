#include "command.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

std::string readFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(no file)";
}

CommandResult runCommand(const std::vector<std::string> &arguments, const std::string &directory)
{
    const ScratchDirectory scratch;
    const std::string output = scratch.file("stdout");
    const std::string error = scratch.file("stderr");
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char *> argv;
        argv.reserve(arguments.size() + 1);
        for (const std::string &argument : arguments)
            argv.push_back(const_cast<char *>(argument.c_str()));
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

ScratchDirectory::ScratchDirectory()
{
    std::string name = (std::filesystem::temp_directory_path() / "xmlpp-test-XXXXXX").string();
    directory = mkdtemp(name.data());
}

ScratchDirectory::~ScratchDirectory()
{
    std::filesystem::remove_all(directory);
}

void ScratchDirectory::write(const std::string &name, const std::string &content) const
{
    const std::filesystem::path path = file(name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

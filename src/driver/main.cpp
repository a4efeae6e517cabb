#include "installation.h"
#include "macrovalues.h"
#include "myxmlpp2.h"
#include "outputfile.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <new>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

[[noreturn]] void endWithoutMemory()
{
    std::fputs("out of memory\n", stderr);
    std::_Exit(EXIT_FAILURE);
}

/// Memory can also run out where no exception may pass, deep inside a library.
[[noreturn]] void onTerminate()
{
    try {
        if (const std::exception_ptr current = std::current_exception())
            std::rethrow_exception(current);
    } catch (const std::bad_alloc &) {
        endWithoutMemory();
    } catch (...) {
    }
    std::abort();
}

/// Gives the process what the run takes for granted.
void prepareProcess()
{
    std::set_terminate(onTerminate);
    // A full quota or a reader that has gone is a failed write, not the end of the process.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    OutputFile::removeOnSignals();
    // A standard stream that is closed would lend its number to the next file that is opened,
    // and an error message would go into that file.
    for (int descriptor = open("/dev/null", O_RDWR); descriptor >= 0;
         descriptor = open("/dev/null", O_RDWR)) {
        if (descriptor > STDERR_FILENO) {
            close(descriptor);
            break;
        }
    }
}

int run(int argc, char **argv)
{
    const char *programName = argc > 0 ? argv[0] : "xmlpp";
    initInstallationDirectory(executablePath().c_str(), 1);
    if (argc < 3) {
        std::fprintf(stderr, "%s: <infile> <outfile> [macro1=value;macro2=value;..]\n",
                     programName);
        return EXIT_FAILURE;
    }
    globalMacros.setSystemMacro("StudioDir", installationDirectory());

    // Never destroyed: the system takes the memory back at once, where the pool would first fill
    // all of it to show stale pointers.
    static MyXMLPP2 &document = *new MyXMLPP2(false);
    rlimit stack = {};
    if (getrlimit(RLIMIT_STACK, &stack) == 0 && stack.rlim_cur != RLIM_INFINITY)
        document.limits.fitStack(stack.rlim_cur);
    if (!document.preprocessFile(argv[1], argc > 3 ? argv[3] : "", true)) {
        std::fprintf(stderr, "load error %s at %d\n", document.errorMessage, document.errorLine);
        return EXIT_FAILURE;
    }
    if (argc == 5)
        document.doctype = argv[4];
    if (!document.QXMLDocument::save(argv[2], 2)) {
        std::fprintf(stderr, "save error %s\n", document.errorMessage);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

/// Ends the process without the destructors of what the libraries keep, which take a thirtieth of a
/// small run; the system takes everything back at once. No stream holds anything any more. Without
/// NDEBUG they run, so that a sanitizer can look for leaks at the end.
[[noreturn]] void endProcess(int status)
{
#ifdef NDEBUG
    std::_Exit(status);
#else
    std::exit(status);
#endif
}

}  // namespace

int main(int argc, char **argv)
{
    prepareProcess();
    try {
        endProcess(run(argc, argv));
    } catch (const std::bad_alloc &) {
        endWithoutMemory();
    }
}

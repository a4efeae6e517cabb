#include "command.h"

#include "installation.h"
#include "macrovalues.h"
#include "outputfile.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <new>
#include <sys/resource.h>
#include <unistd.h>

namespace command
{

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

int start(const Program &program, int argc, char **argv)
{
    const Arguments all(argv, static_cast<std::size_t>(argc));
    const Arguments arguments = all.subspan(all.empty() ? 0 : 1);
    initInstallationDirectory(executablePath().c_str(), 1);
    globalMacros.setSystemMacro("StudioDir", installationDirectory());
    if (arguments.size() >= program.fewestArguments)
        return program.run(arguments);
    std::fprintf(stderr, "%s: %s\n", all.empty() ? "xmlpp" : all.front(), program.usage);
    return EXIT_FAILURE;
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

const char *macroList(Arguments arguments)
{
    return arguments.size() > 2 ? arguments[2] : "";
}

/// Null where the document keeps its own. With further arguments it does not count.
char *doctype(Arguments arguments)
{
    return arguments.size() == 4 ? arguments[3] : nullptr;
}

/// preprocess() where there has to be a tree.
bool preprocessTree(XMLPP2 *document, Arguments arguments)
{
    document->limits = limits();
    if (!document->preprocessFile(arguments[0], macroList(arguments), true)) {
        std::fprintf(stderr, "load error %s at %d\n", document->errorMessage, document->errorLine);
        return false;
    }
    if (char *const given = doctype(arguments))
        document->doctype = given;
    return true;
}

}  // namespace

void execute(const Program &program, int argc, char **argv)
{
    prepareProcess();
    try {
        endProcess(start(program, argc, argv));
    } catch (const std::bad_alloc &) {
        endWithoutMemory();
    }
}

Limits limits()
{
    Limits bounds;
    rlimit stack = {};
    if (getrlimit(RLIMIT_STACK, &stack) == 0 && stack.rlim_cur != RLIM_INFINITY)
        bounds.fitStack(stack.rlim_cur);
    return bounds;
}

bool process(XMLPP2 *document, Arguments arguments, const windows::Sizes &sizes)
{
    std::unique_ptr<OutputFile> output;
    return preprocess(document, arguments, &output, sizes) &&
           save(document, arguments, output.get());
}

bool preprocess(XMLPP2 *document, Arguments arguments, std::unique_ptr<OutputFile> *output,
                const windows::Sizes &sizes)
{
    std::string refusal;
    switch (windows::preprocess({.inFile = arguments[0],
                                 .outFile = arguments[1],
                                 .macroList = macroList(arguments),
                                 .doctype = doctype(arguments),
                                 .limits = limits(),
                                 .sizes = sizes,
                                 .files = document->files},
                                output, &refusal)) {
    case windows::Outcome::Written:
        return true;
    case windows::Outcome::Refused:
        document->reportError(refusal);
        return false;
    case windows::Outcome::NeedsTree:
        break;
    }
    return preprocessTree(document, arguments);
}

bool save(XMLPP2 *document, Arguments arguments, OutputFile *output, OutputFile *companion)
{
    if (output ? document->commit(output, companion)
               : document->QXMLDocument::save(arguments[1], 2, companion))
        return true;
    std::fprintf(stderr, "save error %s\n", document->errorMessage);
    return false;
}

}  // namespace command

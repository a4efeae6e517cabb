#pragma once

#include "windows.h"
#include "xmlpp2.h"

#include <cstddef>
#include <span>

/// The road from a program's arguments to its exit status, which all our programs take.
namespace command
{

/// What the program was given behind its name.
using Arguments = std::span<char *const>;

struct Program {
    std::size_t fewestArguments;
    const char *usage;                ///< names the arguments, for whoever gave too few
    int (*run)(Arguments arguments);  ///< returns the exit status
};

/// Prepares the process, defines the system macro `StudioDir`, runs the program and ends the process
/// without destroying what lives until then. Memory that runs out on the way is one line on
/// standard error and status 1.
[[noreturn]] void execute(const Program &program, int argc, char **argv);

/// The bounds of a run on the stack that the process has.
Limits limits();

/// preprocess() and save(), a piece at a time where that gives the same (see windows.h). The document
/// should not be one that wants to be told of the files, which it is only of those in a tree.
bool process(XMLPP2 *document, Arguments arguments, const windows::Sizes &sizes = {});

/// Loads the document that \a arguments (INFILE OUTFILE [MACROS [DOCTYPE]]) name, executes its
/// directives and gives it the DOCTYPE. A file that cannot be loaded is one line on standard error and
/// false.
bool preprocess(XMLPP2 *document, Arguments arguments);

/// Writes OUTFILE, and moves a \a companion into its place with it. A failure is one line on standard
/// error and false, and both files are as they were.
bool save(XMLPP2 *document, Arguments arguments, OutputFile *companion = nullptr);

}  // namespace command

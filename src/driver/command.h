#pragma once

#include "windows.h"
#include "xmlpp2.h"

#include <cstddef>
#include <memory>
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

/// preprocess() and save().
bool process(XMLPP2 *document, Arguments arguments, const windows::Sizes &sizes = {});

/// Executes the directives of the document that \a arguments (INFILE OUTFILE [MACROS [DOCTYPE]])
/// name, and gives it the DOCTYPE. Where that can be done a piece at a time (see windows.h), *output
/// receives the file that was written, and of the operations of \a document only reportError() is
/// called; otherwise *output stays null, and \a document has the tree. A file that cannot be loaded is
/// one line on standard error and false.
bool preprocess(XMLPP2 *document, Arguments arguments, std::unique_ptr<OutputFile> *output,
                const windows::Sizes &sizes = {});

/// Moves \a output into its place, or writes OUTFILE from the tree where that is null; a \a companion
/// takes its place with it. A failure is one line on standard error and false, and both files are as
/// they were.
bool save(XMLPP2 *document, Arguments arguments, OutputFile *output,
          OutputFile *companion = nullptr);

}  // namespace command

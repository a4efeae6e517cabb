#pragma once

#include "outputfile.h"
#include "xmlpp2.h"

#include <cstddef>
#include <memory>
#include <string>

/// A run of the preprocessor that needs no tree of the whole document: it is read, walked and
/// written a piece at a time. So it takes little memory, which is most of what a large document costs,
/// and documents can be larger than the memory.
///
/// A window is a piece of the document's text, the nodes that the reader makes of it, and all that
/// the walk makes of those. The walk writes what it is done with at once (see Walk). At the end of a
/// window everything in it has been written, and the pool goes back to where it was at the beginning.
/// Three things are left: the elements that are still open, which are the levels of the walk, with their
/// macros; what was not read yet, which is where the next window begins; and fragments, whose window
/// is kept as it is.
///
/// A directive is walked when it is there as a whole: as long as one is open, the window goes on. So a
/// document in one directive takes as much memory as its tree.
///
/// Nobody can tell from the result whether there were windows. Where that would not be so, all is done
/// from the start with the tree (command::preprocess), and nothing is left of the attempt. This is all
/// that is done with the tree:
///
/// | what | why | found by |
/// |---|---|---|
/// | a document that is no regular file or cannot be read | it cannot be read a second time; the error is told there | preprocess(), Windows::readText() |
/// | an output that is written in place or cannot be opened | what is in place cannot be taken back; the error is told there | preprocess() |
/// | text at which the reader stops early | if that is an error, nothing may be executed; else there is no root | Windows::readOn() |
/// | a tag, or text, longer than the look-ahead | it may go on behind the window | Windows::readOn() |
/// | no root, or an unclosed one | the last element that was closed counts, known at the end only | Windows::finishWindow(), finish() |
/// | a second root behind one that is written | the last one counts | Windows::walkTop() |
/// | a root that is a directive | what it leaves must be one element | Windows::walkTop() |
/// | a declaration or DOCTYPE behind the root's beginning, or in an include, that is another one | it would replace the head, which is written | WindowDocument::checkHead() |
/// | an element that is open at the bound on nesting | it is too deep only if there is anything in it, which is not known yet | Windows::enterLevel() |
/// | an error of a directive | one in the text of the document comes first; all copies of a loop are made before the first is walked | Windows::execute() |
/// | an include that is no regular file | as for the document; it is an error here | XMLDocument::load() |
/// | copies that share more than 4 GiB of text | they may be too many to be written | Walk::carryOut() |
/// | shared text, or a bound met, that may not be too much for the whole document | what is behind raises the bound on work, and takes part of the output away | Windows::finish() |
/// | memory that runs out | as an error of a directive | preprocess() |
///
/// Otherwise a bound that is met is final, as the tree would meet it after the same work: nothing more
/// is walked, but the rest of the document is read, since an error in it would come first. Two things
/// can differ at the bounds. A document that goes past two of them can be refused for the other one.
/// And while a loop is walked round by round, an include in it finds more room left than behind all
/// copies, which only matters for a file that a NUL cuts short: of that, just what is read grows.
namespace windows
{

struct Sizes {
    std::size_t text = std::size_t{1} << 16;  ///< of a window
    /// Behind it: what begins in the window must end there.
    std::size_t lookAhead = std::size_t{1} << 14;
};

struct Request {
    const char *inFile;
    const char *outFile;
    const char *macroList;
    const char *doctype;  ///< instead of the document's; null for that
    Limits limits;
    Sizes sizes;
    FileNumbers *files = nullptr;  ///< receives the files that were read; can be null
};

enum class Outcome {
    Written,
    NeedsTree,
    Refused,  ///< a bound was met; the old output is as it was
};

/// Preprocesses a file with expansion and writes the result, indented by two spaces, as
/// XMLPP2::preprocessFile() and save() would do, up to save()'s last step: where it was Written,
/// *output receives the file for XMLDocument::commit(). *message receives why it was Refused. Where
/// the tree is needed, no files are listed.
Outcome preprocess(const Request &request, std::unique_ptr<OutputFile> *output,
                   std::string *message);

}  // namespace windows

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
/// A directive is walked when it is there as a whole: as long as one is open, the window goes on.
///
/// Nobody can tell from the result whether there were windows. Where that would not be so, the tree
/// is used (XMLPP2::preprocessFile), from the start, and nothing is left of the attempt. This is all
/// that is done with the tree:
///
/// | what | why | found by |
/// |---|---|---|
/// | a document that is no regular file | it cannot be read a second time | canBeReadAgain() |
/// | an output that is written in place | that cannot be taken back | OutputFile |
/// | an error in the document's text | nothing may be executed then | XMLReader::readOn() |
/// | a tag, or text, longer than the look-ahead | it may go on behind the window | Windows::read() |
/// | no root, a second or an unclosed one | the last one closed counts | Windows::finishWindow(), finish() |
/// | a root that is a directive | what it leaves must be one element | Windows::walkRoot() |
/// | a later declaration or DOCTYPE | the first ones are written | WindowDocument::checkHead() |
/// | open elements past the bound on nesting | an empty one would be no level | Windows::enterLevel() |
/// | an error of a directive | one in the text of the document comes first; all copies of a loop are made before the first is walked | Windows::execute() |
/// | an include that is no regular file | as for the document; it is an error here | XMLDocument::load() |
/// | copies that share more than 4 GiB of text | they may be too many to be written | Walk::carryOut() |
/// | memory that runs out | as an error of a directive | preprocess() |
///
/// A spent budget is no reason: the same work would only be done again. The rest of the document is read,
/// as an error in it would come first, and then the bound is reported.
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

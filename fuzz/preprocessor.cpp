// The whole preprocessor over files in memory, written as a case of tests/cases. The macro list is
// what a "--- run" has between its first two '.

#include "caseparts.h"
#include "check.h"
#include "checker.h"
#include "command.h"
#include "inputtext.h"
#include "macrovalues.h"
#include "windows.h"
#include "xmlpp2.h"

#include <filesystem>
#include <new>

namespace
{

Case parts;

class FuzzedDocument : public XMLPP2
{
public:
    /// As in the command, the first error ends the run.
    [[noreturn]] void reportError(const std::string &message) override
    {
        error = message;
        throw std::bad_alloc();
    }

    std::string error;
};

std::string macroList()
{
    std::istringstream run(parts["run"]);
    std::string list;
    std::getline(std::getline(run, list, '\''), list, '\'');
    return list.c_str();  // an argument ends at a NUL
}

/// Ends the run as a find when windows of some size end otherwise than the tree does: \a right is what
/// that has written, or its error.
void compareWindows(const Limits &limits, const std::string &right)
{
    const std::string macros = macroList();
    const std::string out = "windows-" + std::to_string(getpid()) + ".xml";
    for (const std::size_t size : {32U, 64U, 100U}) {
        std::unique_ptr<OutputFile> file;
        std::string left;
        const auto outcome = windows::preprocess({.inFile = "in.xml",
                                                  .outFile = out.c_str(),
                                                  .macroList = macros.c_str(),
                                                  .doctype = nullptr,
                                                  .limits = limits,
                                                  .sizes = {size, 2 * size}},
                                                 &file, &left);
        if (outcome == windows::Outcome::NeedsTree)
            continue;
        if (file && file->commit())
            left = readFile(out);
        std::remove(out.c_str());
        requireEqual(left, right);
    }
}

}  // namespace

/// Every include adds a "./" to the name.
FILE *openFile(const std::string &name, const char *mode)
{
    const std::filesystem::path path = name;
    std::string &text = parts["file " + path.lexically_normal().string()];
    return text.empty() ? nullptr : fmemopen(text.data(), text.size(), mode);
}

bool canBeReadAgain(const std::string &)
{
    return true;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    parts = partsOf(input);
    globalMacros.limits.passes = 40;
    globalMacros.limits.length = 1 << 14;
    const Limits limits = {
        .nestedLevels = 60, .nestedIncludes = 8, .loopRounds = 40, .growth = 1 << 17};
    static FILE *const nowhere = std::fopen("/dev/null", "w");
    checkRun("in.xml", macroList(), limits, nowhere);
    for (const bool expand : {true, false}) {
        FuzzedDocument document;
        document.limits = limits;
        std::string result;
        try {
            if (document.preprocessFile("in.xml", macroList(), expand)) {
                result = written([&](FILE *stream) { document.write(stream, 2); });
                // An inherited attribute can be called anything.
                if (input.find("inherit_attributes") == std::string::npos)
                    requireStable(&document, 2);
            }
        } catch (const std::bad_alloc &) {
            // An error, or an expansion that is too long: legal ends.
            result = document.error;
        }
        if (expand)
            compareWindows(limits, result);
    }
    return 0;
}

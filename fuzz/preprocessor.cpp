// The whole preprocessor over files in memory. The input is written as a case of tests/cases:
// a line "--- file NAME" begins a file, "--- args" the macro list, any other "--- " a section
// that does not count. What stands before the first of them is the file in.xml.

#include "check.h"
#include "inputtext.h"
#include "macrovalues.h"
#include "xmlpp2.h"

#include <filesystem>
#include <map>
#include <new>
#include <sstream>

namespace
{

std::map<std::string, std::string> files;

class FuzzedDocument : public XMLPP2
{
public:
    /// As in the command, the first error ends the run.
    [[noreturn]] void reportError(const std::string &) override { throw std::bad_alloc(); }
};

/// Every include adds a "./" to the name.
std::string &fileOf(const std::string &name)
{
    return files[std::filesystem::path(name).lexically_normal()];
}

std::string readFiles(const std::string &input)
{
    files.clear();
    std::string arguments;
    std::string ignored;
    std::string *section = &fileOf("in.xml");
    std::istringstream lines(input);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("--- file "))
            section = &fileOf(line.substr(9));
        else if (line.starts_with("--- "))
            section = line == "--- args" ? &arguments : &ignored;
        else
            *section += line + '\n';
    }
    return arguments.substr(0, arguments.find('\n'));
}

}  // namespace

FILE *openFile(const std::string &name, const char *mode)
{
    std::string &text = fileOf(name);
    return text.empty() ? nullptr : fmemopen(text.data(), text.size(), mode);
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::string macros = readFiles(input);
    for (const bool expand : {true, false}) {
        FuzzedDocument document;
        document.limits = {
            .nestedLevels = 60, .nestedIncludes = 8, .loopRounds = 40, .growth = 1 << 17};
        globalMacros.limits.passes = 40;
        globalMacros.limits.length = 1 << 14;
        bool isDone = false;
        try {
            isDone = document.preprocessFile("in.xml", macros, expand);
        } catch (const std::bad_alloc &) {
            // An error, or an expansion that is too long: legal ends.
        }
        // An inherited attribute can be called anything.
        if (isDone && input.find("inherit_attributes") == std::string::npos)
            requireStable(&document, 2);
    }
    return 0;
}

#include "command.h"
#include "myxmlpp2.h"
#include "outputfile.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace
{

/// A name as Make and Ninja read it.
std::string escaped(std::string_view name)
{
    std::string text;
    for (const char character : name) {
        if (std::strchr(" \t#:", character))
            text += '\\';
        else if (character == '$')
            text += '$';
        text += character;
    }
    return text;
}

/// One rule for the output and, so that a file that goes away stops no build, one without
/// prerequisites for each file that the document includes.
std::string dependencies(const char *outFile, const FileNumbers &numbers)
{
    std::vector<const std::string *> files(numbers.size());
    for (const auto &[path, number] : numbers)
        files[number] = &path;
    std::string rules = escaped(outFile).append(":");
    for (const std::string *file : files)
        rules.append(" \\\n  ").append(escaped(*file));
    rules += '\n';
    for (std::size_t include = 1; include < files.size(); ++include)
        rules.append(escaped(*files[include])).append(":\n");
    return rules;
}

int preprocess(command::Arguments arguments)
{
    const command::Arguments shared = arguments.subspan(1);
    // Never destroyed, as in xmlpp.
    static MyXMLPP2 &document = *new MyXMLPP2(false);
    FileNumbers files;
    document.files = &files;
    std::unique_ptr<OutputFile> output;
    if (!command::preprocess(&document, shared, &output))
        return EXIT_FAILURE;
    const std::string rules = dependencies(shared[1], files);
    OutputFile file(arguments[0]);
    // What cannot be written is seen when the file is finished.
    if (file.stream())
        std::fwrite(rules.data(), 1, rules.size(), file.stream());
    return command::save(&document, shared, output.get(), &file) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char **argv)
{
    command::execute({3, "<depfile> <infile> <outfile> [macro1=value;macro2=value;..]", preprocess},
                     argc, argv);
}

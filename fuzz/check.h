#pragma once

#include "xmldocument.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

/// What libFuzzer calls with every input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// Ends the run as a find when \a left is not \a right, which are shown.
inline void requireEqual(const std::string &left, const std::string &right)
{
    if (left == right)
        return;
    std::fprintf(stderr, "--- left\n%s\n--- right\n%s\n", left.c_str(), right.c_str());
    std::abort();
}

inline std::string written(XMLDocument *document, int indent)
{
    char *bytes = nullptr;
    std::size_t size = 0;
    FILE *stream = open_memstream(&bytes, &size);
    document->write(stream, indent);
    std::fclose(stream);
    const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
    return {bytes, size};
}

/// What is written is read, and written again as the same bytes. Not so for elements without a
/// name, whose tags are read as end tags.
inline void requireStable(XMLDocument *document, int indent)
{
    const std::string bytes = written(document, indent);
    for (const char *nameless : {"<>", "</>", "< "}) {
        if (bytes.find(nameless) != std::string::npos)
            return;
    }
    XMLDocument again(document->keepComments);
    requireEqual(again.parse(std::string(bytes).data()) ? "" : again.errorMessage, "");
    requireEqual(bytes, written(&again, indent));
}

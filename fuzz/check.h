#pragma once

#include "written.h"
#include "xmldocument.h"

#include <cstdint>

/// What libFuzzer calls with every input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// Ends the run as a find when \a left is not \a right.
inline void requireEqual(const std::string &left, const std::string &right)
{
    if (left == right)
        return;
    std::fprintf(stderr, "--- left\n%s\n--- right\n%s\n", left.c_str(), right.c_str());
    std::abort();
}

/// What is written is read, and written again as the same bytes. Not so for elements without a
/// name, whose tags are read as end tags.
inline void requireStable(XMLDocument *document, int indent)
{
    const auto bytesOf = [indent](XMLDocument *from) {
        return written([=](FILE *stream) { from->write(stream, indent); });
    };
    const std::string bytes = bytesOf(document);
    for (const char *nameless : {"<>", "</>", "< "}) {
        if (bytes.find(nameless) != std::string::npos)
            return;
    }
    XMLDocument again(document->keepComments);
    requireEqual(again.parse(std::string(bytes).data()) ? "" : again.errorMessage, "");
    requireEqual(bytes, bytesOf(&again));
}

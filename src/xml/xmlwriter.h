#pragma once

#include "xmlnode.h"

#include <cstdio>
#include <memory>
#include <string_view>

class XMLDocument;

/// Formats nodes for one stream. What it writes is gathered and handed to the stream in large
/// runs, the last of them when the writer goes. Failures are the stream's: nothing here looks at
/// them.
class XMLWriter
{
public:
    XMLWriter(FILE *target, int spacesPerLevel);
    ~XMLWriter();
    XMLWriter(const XMLWriter &) = delete;
    XMLWriter &operator=(const XMLWriter &) = delete;

    void writeDocument(const XMLDocument &document);

    /// \a node, which can be null, and all below it, \a depth levels deep. Takes no more of the
    /// stack for a deep tree than for a flat one.
    void writeNode(const XMLNode *node, long long depth);

    /// \a text, which can be null, in printable ASCII: all other bytes as references.
    void writeEscaped(const char *text);

private:
    static constexpr std::size_t bufferSize = std::size_t{1} << 16;

    bool writeOpening(const XMLNode *node, long long depth);
    void writeStartTag(const XMLElement *element);
    void writeEndTag(const XMLElement *element, long long depth);
    void writeReference(unsigned char byte);
    void writeIndentation(long long depth);
    void writeLineFeed();
    void writeText(const char *text);
    void write(std::string_view text);
    void put(char c);
    void flush();

    FILE *stream;
    int indent;
    std::unique_ptr<char[]> buffer;
    char *next;
    char *const bufferEnd;
};

#pragma once

#include "xmlnode.h"

#include <cstdio>

class XMLDocument;

/// Formats nodes for one stream. What it writes is gathered and handed to the stream in large
/// runs, the last of them at the end of each operation. Failures are the stream's: nothing here
/// looks at them.
class XMLWriter
{
public:
    XMLWriter(FILE *target, int spacesPerLevel);
    XMLWriter(const XMLWriter &) = delete;
    XMLWriter &operator=(const XMLWriter &) = delete;

    /// The declaration, the document type and the tree.
    void writeDocument(const XMLDocument &document);

    /// \a node, which can be null, and all below it, \a depth levels deep. Takes no more of the
    /// stack for a deep tree than for a flat one.
    void writeNode(const XMLNode *node, long long depth);

    /// \a text, which can be null, in printable ASCII: all other bytes as references.
    void writeEscaped(const char *text);

private:
    static constexpr std::size_t bufferSize = std::size_t{1} << 16;
    /// Room behind bufferEnd for the last bytes of a text, and for the few that the writer itself
    /// adds from one text or indentation to the next, where it looks whether the end is passed.
    static constexpr std::size_t slack = 64;

    // Each of these appends at to and returns the new end. It is handed on in locals: every byte
    // that is written could otherwise, for all that the compiler knows, change the member in which
    // the end is kept.
    template <typename Wanted>
    char *appendWhile(char *to, const char **text, Wanted wanted);
    char *appendText(char *to, const char *text);
    char *appendEscaped(char *to, const char *text);
    char *appendReference(char *to, unsigned char byte);
    char *appendIndentation(char *to, long long depth);
    char *appendStartTag(char *to, const XMLElement *element);
    char *appendEndTag(char *to, const XMLElement *element, long long depth);
    char *appendTree(char *to, const XMLNode *node, long long depth);
    char *appendNode(char *to, const XMLNode *node, long long depth);
    char *flush(char *to);

    FILE *stream;
    int indent;
    char buffer[bufferSize + slack];
    char *const bufferEnd = buffer + bufferSize;
};

#pragma once

#include "xmlnode.h"

#include <cassert>
#include <cstdio>
#include <cstring>
#include <string_view>

class XMLDocument;

/// Formats nodes for one stream. Failures are the stream's: nothing here looks at them.
///
/// What is written is gathered in a buffer and handed to the stream in large runs, the last of them
/// at the end of each operation. Looking before each byte whether there is room for it would cost
/// as much as writing it, so the buffer has slack behind its end, and these rules keep all that is
/// written within the two:
/// - An operation may be called with the end passed, by half of the slack at most.
/// - Whatever can be long, a text or an indentation, begins by handing over what is there if the
///   end is passed. It then looks again after every few bytes, and so passes the end by fewer
///   than it writes between two looks.
/// - What the writer itself adds between two of these, quotes, brackets and references, is
///   short and is not preceded by a look: it goes into the slack.
/// - Each place that writes asserts that there is room.
class XMLWriter
{
public:
    // What is read of the buffer was written there before; a small document uses little of it.
    // cppcheck-suppress uninitMemberVar
    XMLWriter(FILE *target, int spacesPerLevel) : stream(target), indent(spacesPerLevel) {}
    XMLWriter(const XMLWriter &) = delete;
    XMLWriter &operator=(const XMLWriter &) = delete;

    /// The declaration, the document type and the tree.
    void writeDocument(const XMLDocument &document);

    /// \a node, which can be null, and all below it, \a depth levels deep. Takes no more of the
    /// stack for a deep tree than for a flat one.
    void writeNode(const XMLNode *node, long long depth) { flush(appendTree(buffer, node, depth)); }

    // The same a piece at a time. It is handed to the stream when the buffer is full, and by flush().

    /// The declaration and the document type.
    void writeHead(const XMLDocument &document) { end = appendHead(end, document); }
    /// The start tag, but for its end: what is written next tells whether there is anything in it.
    void beginElement(const XMLElement *element);
    /// \a node, which is not null, and all below it, inside the element that was begun last.
    void writeInside(const XMLNode *node);
    /// Ends the element that was begun last, which has that \a name.
    void endElement(const char *name);
    void flush() { end = flush(end); }

    /// \a text, which can be null, in printable ASCII: all other bytes as references.
    void writeEscaped(const char *text);

private:
    static constexpr std::size_t bufferSize = std::size_t{1} << 16;
    static constexpr std::size_t slack = 64;

    // Each of these appends at to and returns the new end. It is handed on in locals: every byte
    // that is written could otherwise, for all that the compiler knows, change the member in which
    // the end is kept.
    char *append(char *to, std::string_view piece)
    {
        assert(piece.size() <= roomAt(to));
        std::memcpy(to, piece.data(), piece.size());
        return to + piece.size();
    }
    template <typename End>
    char *appendUpTo(char *to, const char **text);
    char *appendText(char *to, const char *text);
    char *appendBetween(char *to, std::string_view before, const char *text,
                        std::string_view after);
    char *appendEscaped(char *to, const char *text);
    char *appendReference(char *to, unsigned char byte);
    char *appendIndentation(char *to, long long depth);
    char *appendHead(char *to, const XMLDocument &document);
    char *appendStartTag(char *to, const XMLElement *element);
    char *appendEndTag(char *to, const char *name, long long depth);
    char *endStartTag(char *to);
    char *appendTree(char *to, const XMLNode *node, long long depth);
    char *appendNode(char *to, const XMLNode *node, long long depth);
    char *appendLineEnd(char *to) { return indent != 0 ? append(to, "\n") : to; }
    /// Hands the buffer's content up to \a to over. Returns where the next byte goes.
    char *flush(char *to);
    char *flushPassed(char *to) { return to >= bufferEnd ? flush(to) : to; }
    std::size_t roomAt(const char *to) const
    {
        return static_cast<std::size_t>(bufferEnd + slack - to);
    }

    FILE *stream;
    int indent;
    char buffer[bufferSize + slack];
    char *const bufferEnd = buffer + bufferSize;

    char *end = buffer;  ///< of what was written a piece at a time
    long long openElements = 0;
    bool isTagOpen = false;  ///< whether the start tag that was written last lacks its end
};

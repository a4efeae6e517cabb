#pragma once

#include "namehash.h"
#include "xmlnode.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

class XMLDocument;

/// Where a byte occurs in text that is read from its start to its end: each part of the text is
/// searched once, however often and for however short a span is asked, and just before it is read,
/// as that brings it into the cache.
class NextByte
{
public:
    NextByte(char wantedByte, std::span<const char> text)
        : byte(wantedByte),
          next(text.data()),
          searched(text.data()),
          end(text.data() + text.size())
    {
    }

    /// Passes what is before \a where, which never decreases.
    void passTo(const char *where)
    {
        if (next < where)
            find(where);
    }
    /// Whether the byte is between what was passed and \a where.
    bool isBefore(const char *where)
    {
        while (next < where && next == searched)
            find(next);
        return next < where;
    }

private:
    void find(const char *from);

    char byte;
    const char *next;  ///< its first occurrence that was not passed yet, or where searching ended
    const char *searched;  ///< how far the text was searched
    const char *end;
};

/// One read: a single pass over text with a NUL behind it, from its first byte to the NUL or to the
/// first error, without looking back. The text lies in the document's pool, which must be the
/// current one and takes the nodes, and the reader takes it over: the strings of the nodes are
/// pieces of it, decoded where they are and ended with a NUL. What XML 1.0 has and this reader has
/// not is passed over as character data; it never fails but for the two errors below.
class XMLReader
{
public:
    enum class Error {
        None,
        BadName,   ///< an attribute's name begins with no letter, '_', '-' or ':'
        Mismatch,  ///< an end tag's name is no beginning of the open element's name
    };

    XMLReader(XMLDocument *target, std::span<char> text);

    /// The last top-level element that was closed. Null when there is none.
    XMLNode *read();

    Error error() const { return failure; }
    int errorLine() const { return failureLine; }

private:
    /// A piece of the text.
    struct Span {
        char *start;
        char *end;

        std::size_t length() const { return static_cast<std::size_t>(end - start); }
        std::string_view view() const { return {start, length()}; }
    };
    struct OpenElement {
        XMLElement *element;
        XMLNode **end;  ///< where the next child hangs
    };

    bool readMarkup();
    bool readInstruction();
    bool readDeclaration();
    bool readDeclarationValue(const Span &name);
    void readExclamation();
    void readComment();
    void readCData();
    void readDoctype();
    bool readStartTag();
    char *readAttribute(char *from);
    bool readEndTag();
    void readCharacterData();

    void skipSpace();
    Span readName();
    static Span quotedAt(char *quote);
    bool findEnd(const char *terminator, Span *text);

    void setAttribute(const Span &name, const char *value);
    void setIndexedAttribute(std::string_view name, const char *value);
    XMLElement *makeElement(const Span &name);
    void closeElement(XMLElement *element);
    const char *endText(const Span &text);
    void append(XMLNode *node, int line);
    bool fail(Error what);

    /// The newlines up to and including \a where, which never lies before what was asked for last.
    int lineAt(const char *where)
    {
        if (nextNewline <= where)
            countLines(where);
        return line;
    }
    void countLines(const char *where);

    XMLDocument *document;
    char *position;
    NextByte ampersands;
    NextByte dollars;
    const char *nextNewline;  ///< the first newline that is not counted in line yet, or the end
    int line = 0;
    int markupLine = 0;
    Error failure = Error::None;
    int failureLine = 0;
    bool keepComments;

    std::vector<OpenElement> open;
    XMLNode *result = nullptr;

    /// The attributes of the tag that is being read. Once there are many, names are looked up
    /// through the index, so that a long list costs what its text costs.
    std::vector<XMLAttribute> attributes;
    std::unordered_map<std::string_view, std::size_t, NameHash> attributeIndex;
};

#pragma once

#include "namehash.h"
#include "nextbyte.h"
#include "xmlnode.h"

#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

class XMLDocument;

/// One read: a single pass over text with a NUL behind it, from its first byte to the NUL or to the
/// first error. The nodes go into the document's pool. What XML 1.0 has and this reader has not is
/// passed over as character data; it never fails but for the two errors below.
///
/// The text lies in that pool too, and the reader takes it over: the nodes point to the names and
/// values where they stand. Those are nearly all of a document, and what a large one costs is the
/// first touch of its memory, so copies would cost as much again as reading does.
///
/// A string needs a NUL behind it, which overwrites what stands there: a quote, a '=', a '>', white
/// space. endAt() does so, and these rules make it right:
/// - A byte is overwritten once it was read, and nothing reads it again: the reader never looks
///   back, and who still needs the byte keeps it in a local. The '>' of "<a>" ends the tag and
///   the name both, so an element's name is ended when its tag was read.
/// - Decoding a reference never makes it longer, so a value is decoded where it stands.
/// - The byte can be a newline, and the search for the next newline would end at the NUL. So the
///   lines are counted up to the byte first, which leaves that search behind it.
/// Character data alone is copied: the byte behind it is the '<' that is to be read next.
class XMLReader
{
public:
    /// Without \a wantsLines all nodes and the error are in line 0.
    XMLReader(XMLDocument *target, std::span<char> text, bool wantsLines = true);

    /// The last top-level element that was closed. Null when there is none.
    XMLNode *read();

    // The same a piece at a time, for who needs no tree of the whole. The current pool must be the
    // document.

    struct OpenElement {
        XMLElement *element;
        XMLNode **end;  ///< the link that the next child is to hang from
    };

    /// Reads the constructs that begin before \a limit and what stands behind each, until there are
    /// fewer than \a fewestOpen open elements. False where the read ends early.
    bool readOn(const char *limit, std::size_t fewestOpen);
    /// What was not read yet. Empty also where the text ended within a construct.
    std::string_view rest()
    {
        lineAt(position);
        return {position, textEnd};
    }
    /// Goes on in \a text, at whose beginning stands what rest() gave.
    void continueIn(std::span<char> text);
    /// Those that are open, the outermost first. An element can be replaced by another one of its name
    /// and without children, which the further ones are then linked to.
    std::vector<OpenElement> &openElements() { return open; }
    /// What read() returns, up to here; it is then forgotten.
    XMLNode *takeResult() { return std::exchange(result, nullptr); }

    /// What ended the read: "bad tagName" where an attribute's name begins with no letter, '_', '-'
    /// or ':', "tagName mismatch" where an end tag's is no beginning of the open element's name.
    /// Null for the end of the text.
    const char *error() const { return failure; }
    int errorLine() { return lineAt(position); }

private:
    /// A piece of the text.
    struct Span {
        char *start;
        char *end;

        std::size_t length() const { return static_cast<std::size_t>(end - start); }
        std::string_view view() const { return {start, length()}; }
    };
    bool readMarkup();
    bool readInstruction();
    bool readDeclaration();
    bool readDeclarationValue(const Span &name);
    void readExclamation();
    template <typename Node>
    void readUpTo(const char *terminator, bool isKept);
    bool readStartTag();
    char *readAttribute(char *from);
    bool readEndTag();
    void readCharacterData();

    Span readName();

    void setAttribute(const Span &name, const char *value);
    void setIndexedAttribute(std::string_view name, const char *value);
    XMLElement *makeElement(const Span &name);
    /// Links \a element, behind whose end the read stands, to the innermost open element.
    void closeElement(XMLElement *element)
    {
        if (open.empty())
            result = element;
        else
            append(element, element->line);
    }
    /// Ends the string before \a end, which was read and is not needed any more, with a NUL.
    void endAt(char *end)
    {
        lineAt(end);
        *end = '\0';
    }
    void append(XMLNode *node, int line);
    bool fail(const char *message)
    {
        failure = message;
        return false;
    }

    /// The newlines up to and including \a where, or what was asked for before, if that lies behind.
    int lineAt(const char *where)
    {
        if (nextNewline <= where)
            countLines(where);
        return line;
    }
    void countLines(const char *where);

    XMLDocument *document;
    const bool countsLines;
    char *position = nullptr;
    const char *textEnd = nullptr;
    NextByte ampersands{'&', {}};
    NextByte dollars{'$', {}};
    const char *nextNewline =
        nullptr;  ///< the first that is not counted in line yet; the NUL if none is
    int line = 0;
    int markupLine = 0;  ///< where the markup that is being read began
    const char *failure = nullptr;

    std::vector<OpenElement> open;
    XMLNode *result = nullptr;

    /// The attributes of the tag that is being read. Once there are many, names are looked up
    /// through the index, so that a long list costs what its text costs.
    std::vector<XMLAttribute> attributes;
    std::unordered_map<std::string_view, std::size_t, NameHash> attributeIndex;
};

#include "xmlreader.h"

#include "characterclass.h"
#include "references.h"
#include "xmldocument.h"

#include <cassert>
#include <cstring>

namespace
{

using namespace CharacterClass;

/// Attributes of one tag up to which a new name is compared with each of them.
constexpr std::size_t mostComparedNames = 16;

/// Where \a byte is next, at \a from or behind; the end of the text when it is nowhere.
template <typename Char>
Char *findByte(char byte, Char *from)
{
    Char *found = std::strchr(from, byte);
    return found ? found : from + std::strlen(from);
}

/// What stands behind the bytes of these classes, if any, that begin at \a from.
char *pass(std::uint8_t classes, char *from)
{
    while (is(classes, *from))
        ++from;
    return from;
}

/// Steps over one byte, whatever it is, but never past the end of the text.
char *passByte(char *from)
{
    return *from == '\0' ? from : from + 1;
}

}  // namespace

XMLReader::XMLReader(XMLDocument *target, std::span<char> text, bool wantsLines)
    : document(target),
      countsLines(wantsLines)
{
    continueIn(text);
}

void XMLReader::continueIn(std::span<char> text)
{
    textEnd = text.data() + text.size();
    assert(*textEnd == '\0');
    // A newline that is the very first byte is never counted.
    nextNewline = text.empty() || !countsLines ? textEnd : findByte('\n', text.data() + 1);
    ampersands = NextByte('&', text);
    dollars = NextByte('$', text);
    position = pass(Space, text.data());
}

/// Reads a name, which can be empty, and the white space behind it.
XMLReader::Span XMLReader::readName()
{
    const Span name{position, pass(Name, position)};
    position = pass(Space, name.end);
    return name;
}

XMLNode *XMLReader::read()
{
    const CurrentPool current(document);
    readOn(textEnd, 0);
    return result;
}

bool XMLReader::readOn(const char *limit, std::size_t fewestOpen)
{
    while (*position == '<' && position < limit) {
        markupLine = lineAt(position);
        ++position;
        if (!readMarkup())
            return false;
        readCharacterData();
        if (open.size() < fewestOpen)
            break;
    }
    // Text can be first only in the whole document.
    return *position == '<' || position == textEnd;
}

/// Reads one construct, from behind its '<'. False ends the read.
bool XMLReader::readMarkup()
{
    switch (*position) {
    case '?':
        return readInstruction();
    case '!':
        readExclamation();
        return true;
    case '/':
        return readEndTag();
    default:
        return readStartTag();
    }
}

/// An instruction named by a beginning of "xml", the empty one included, is the declaration; of
/// any other the rest is character data.
bool XMLReader::readInstruction()
{
    ++position;
    const Span name = readName();
    return !std::string_view("xml").starts_with(name.view()) || readDeclaration();
}

bool XMLReader::readDeclaration()
{
    for (;;) {
        const Span name = readName();
        if (*position == '?') {
            position += position[1] == '>' ? 2 : 1;
            return true;
        }
        if (*position == '=') {
            if (!readDeclarationValue(name))
                return false;
        } else if (*position == '\0' || name.length() == 0) {
            // Without a name nothing was read: the character fits nothing and ends the
            // declaration, as the end of the text does.
            return true;
        }
    }
}

bool XMLReader::readDeclarationValue(const Span &name)
{
    position = pass(Space, position + 1);
    if (*position != '"') {
        result = nullptr;
        return false;
    }
    const Span value{position + 1, findByte('"', position + 1)};
    position = pass(Space, passByte(value.end));
    if (name.view() == "version")
        document->version = XMLDocument::copyString(value.start, value.length());
    else if (name.view() == "encoding")
        document->encoding = XMLDocument::copyString(value.start, value.length());
    return true;
}

void XMLReader::readExclamation()
{
    if (*++position == '-') {
        if (*++position == '-') {
            ++position;
            readUpTo<XMLComment>("-->", document->keepComments);
        }
        return;
    }
    const Span name = readName();
    // No name holds a '[', so only the empty one is a beginning of "[CDATA[".
    if (name.length() == 0) {
        position = passByte(position);
        readName();
        position = passByte(position);
        readUpTo<XMLCDATASection>("]]>", true);
    } else if (std::string_view("DOCTYPE").starts_with(name.view())) {
        const Span type = readName();
        if (*position == '>') {
            document->doctype = XMLDocument::copyString(type.start, type.length());
            ++position;
        }
    }
}

/// Reads a node whose text goes from here to \a terminator: two equal bytes and a '>'. The search
/// does not look back: where a byte fails the test it goes on at that byte, so a third equal byte
/// hides the terminator behind it.
template <typename Node>
void XMLReader::readUpTo(const char *terminator, bool isKept)
{
    char *const start = position;
    char *end;
    do {
        end = position = findByte(terminator[0], position);
        if (*end == '\0')
            return;
    } while (*++position != terminator[1] || *++position != terminator[2]);
    ++position;
    if (!isKept || open.empty())
        return;
    endAt(end);
    append(new Node(start), markupLine);
}

// Here and in what it calls, the position is handed on in a local: every NUL that ends a string
// could otherwise, for all that the compiler knows, change the member.
bool XMLReader::readStartTag()
{
    ampersands.passTo(position);
    dollars.passTo(position);
    const Span name{position, pass(Name, position)};
    attributes.clear();
    if (!attributeIndex.empty())
        attributeIndex = {};
    char *at = pass(Space, name.end);
    while (is(NameStart, *at))
        at = readAttribute(at);
    position = at;
    const char next = *at;
    if (next != '>' && next != '/' && next != '\0')
        return fail("bad tagName");
    XMLElement *element = makeElement(name);
    if (next == '/' && at[1] == '>') {
        closeElement(element);
        position = at + 2;
        return true;
    }
    open.push_back({element, element->childrenEnd()});
    if (next == '/')
        return readEndTag();
    // The byte itself can be the name's NUL by now.
    if (next == '>')
        ++position;
    return true;
}

/// Returns what stands behind the attribute, whose name begins at \a from, and white space. One
/// that has no value, or none in quotes, is passed over up to there.
inline char *XMLReader::readAttribute(char *from)
{
    const Span name{from, pass(Name, from)};
    char *at = pass(Space, name.end);
    if (*at != '=')
        return at;
    at = pass(Space, at + 1);
    if (*at != '"')
        return at;
    const Span value{at + 1, findByte('"', at + 1)};
    at = pass(Space, passByte(value.end));
    lineAt(at);
    *name.end = '\0';
    *value.end = '\0';
    if (ampersands.isBefore(value.end))
        decodeReferences(value.start, value.end, value.start, false);
    setAttribute(name, value.start);
    return at;
}

/// A name that the tag has already gets its value replaced in its place.
inline void XMLReader::setAttribute(const Span &name, const char *value)
{
    if (attributes.size() >= mostComparedNames) {
        setIndexedAttribute(name.view(), value);
        return;
    }
    for (XMLAttribute &attribute : attributes) {
        if (*attribute.name == *name.start && std::strcmp(attribute.name, name.start) == 0) {
            attribute.value = value;
            return;
        }
    }
    attributes.push_back({name.start, value});
}

void XMLReader::setIndexedAttribute(std::string_view name, const char *value)
{
    if (attributeIndex.empty()) {
        for (std::size_t index = 0; index < attributes.size(); ++index)
            attributeIndex.emplace(attributes[index].name, index);
    }
    const auto [entry, isNew] = attributeIndex.try_emplace(name, attributes.size());
    if (isNew)
        attributes.push_back({name.data(), value});
    else
        attributes[entry->second].value = value;
}

/// Makes the element of the tag that was read up to here.
XMLElement *XMLReader::makeElement(const Span &name)
{
    endAt(name.end);
    XMLElement *element = document->createElement(name.start);
    element->line = markupLine;
    if (element->addAttributes(attributes) && !dollars.isBefore(position) &&
        !ampersands.isBefore(position))
        element->setLiteral();
    return element;
}

/// An end tag, or the end of an empty-element tag, from its '/'.
bool XMLReader::readEndTag()
{
    char *at = position + 1;
    // A beginning of the open element's name will do, the empty one included.
    const char *expected = open.empty() ? "" : open.back().element->name();
    for (; is(Name, *at) && *at == *expected; ++at)
        ++expected;
    const bool matches = open.empty() || !is(Name, *at);
    position = pass(Space, pass(Name, at));
    if (!matches)
        return fail("tagName mismatch");
    if (*position != '>')
        return true;
    ++position;
    if (!open.empty()) {
        XMLElement *element = open.back().element;
        open.pop_back();
        closeElement(element);
    }
    return true;
}

void XMLReader::readCharacterData()
{
    char *const start = position;
    // Mostly it is the end of a line and a short indentation.
    char *at = start;
    for (int step = 0; step < 16 && is(Space, *at); ++step)
        ++at;
    position = *at == '<' ? at : findByte('<', at);
    if (!document->keepComments || open.empty())
        return;
    char *const text = XMLDocument::copyString(start, Span{start, position}.length());
    decodeReferences(start, position, text, true);
    append(new XMLData(text), lineAt(start));
}

/// Appends \a node to the innermost open element, in time that does not depend on how many
/// children that has.
void XMLReader::append(XMLNode *node, int firstLine)
{
    OpenElement &parent = open.back();
    node->line = firstLine;
    node->parent = parent.element;
    *parent.end = node;
    parent.end = &node->nextSibling;
}

void XMLReader::countLines(const char *where)
{
    while (nextNewline <= where && *nextNewline != '\0') {
        line = static_cast<int>(static_cast<unsigned>(line) + 1);
        nextNewline = findByte('\n', nextNewline + 1);
    }
}

#include "xmlreader.h"

#include "characterclass.h"
#include "references.h"
#include "xmldocument.h"

#include <cstring>

namespace
{

/// Attributes of one tag up to which a new name is compared with each of them.
constexpr std::size_t mostComparedNames = 16;

/// Where \a byte is next, at \a from or behind; the end of the text when it is nowhere.
template <typename Char>
Char *findByte(char byte, Char *from)
{
    Char *found = std::strchr(from, byte);
    return found ? found : from + std::strlen(from);
}

bool beginsWith(const char *text, std::string_view beginning)
{
    for (const char c : beginning) {
        if (*text++ != c)
            return false;
    }
    return true;
}

}  // namespace

NextByte::NextByte(char wantedByte, const char *text) : byte(wantedByte), next(findByte(byte, text))
{
}

void NextByte::find(const char *from)
{
    next = findByte(byte, from);
}

XMLReader::XMLReader(XMLDocument *target, char *text)
    : document(target),
      position(text),
      ampersands('&', text),
      dollars('$', text),
      // A newline that is the very first byte is never counted.
      nextNewline(*text == '\0' ? text : findByte('\n', text + 1)),
      keepComments(target->keepComments)
{
}

inline void XMLReader::skipSpace()
{
    char *p = position;
    while (CharacterClass::is(CharacterClass::Space, *p))
        ++p;
    position = p;
}

/// Steps over one byte, whatever it is, but never past the end of the text.
inline void XMLReader::skipByte()
{
    if (*position != '\0')
        ++position;
}

inline XMLReader::Span XMLReader::readName()
{
    char *const start = position;
    char *p = start;
    while (CharacterClass::is(CharacterClass::Name, *p))
        ++p;
    position = p;
    return {start, p};
}

/// The text between the quote here and the next one, or the end; stands behind the white space
/// that follows it.
inline XMLReader::Span XMLReader::readQuoted()
{
    char *const start = position + 1;
    char *const end = findByte('"', start);
    position = end;
    skipByte();
    skipSpace();
    return {start, end};
}

XMLNode *XMLReader::read()
{
    skipSpace();
    while (*position == '<') {
        markupLine = lineAt(position);
        ++position;
        if (!readMarkup())
            break;
        readCharacterData();
    }
    return result;
}

/// One construct, from behind its '<'. False ends the read.
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
    skipSpace();
    return !std::string_view("xml").starts_with(name.view()) || readDeclaration();
}

bool XMLReader::readDeclaration()
{
    for (;;) {
        const Span name = readName();
        skipSpace();
        if (*position == '?') {
            ++position;
            if (*position == '>')
                ++position;
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
    ++position;
    skipSpace();
    if (*position != '"') {
        result = nullptr;
        return false;
    }
    const Span value = readQuoted();
    if (name.view() == "version")
        document->version = XMLDocument::copyString(value.start, value.length());
    else if (name.view() == "encoding")
        document->encoding = XMLDocument::copyString(value.start, value.length());
    return true;
}

void XMLReader::readExclamation()
{
    ++position;
    if (*position == '-') {
        readComment();
        return;
    }
    const Span name = readName();
    skipSpace();
    // No name holds a '[', so only the empty one is a beginning of "[CDATA[".
    if (name.length() == 0)
        readCData();
    else if (std::string_view("DOCTYPE").starts_with(name.view()))
        readDoctype();
}

void XMLReader::readComment()
{
    ++position;
    if (*position != '-')
        return;
    ++position;
    Span text{};
    if (findEnd("-->", &text) && keepComments && !open.empty())
        append(new XMLComment(endText(text)), markupLine);
}

void XMLReader::readCData()
{
    skipByte();
    readName();
    skipSpace();
    skipByte();
    Span text{};
    if (findEnd("]]>", &text) && !open.empty())
        append(new XMLCDATASection(endText(text)), markupLine);
}

void XMLReader::readDoctype()
{
    const Span name = readName();
    skipSpace();
    if (*position == '>') {
        document->doctype = XMLDocument::copyString(name.start, name.length());
        ++position;
    }
}

/// Finds the text from here to \a terminator (two equal bytes and a '>') and stands behind that;
/// false at the end of the text. The search does not look back: where a byte fails the test it
/// goes on at that byte, so a third equal byte hides the terminator behind it.
bool XMLReader::findEnd(const char *terminator, Span *text)
{
    text->start = position;
    for (;;) {
        position = findByte(terminator[0], position);
        text->end = position;
        if (*position == '\0')
            return false;
        if (*++position != terminator[1])
            continue;
        if (*++position != terminator[2])
            continue;
        ++position;
        return true;
    }
}

bool XMLReader::readStartTag()
{
    ampersands.passTo(position);
    dollars.passTo(position);
    const Span name = readName();
    skipSpace();
    startAttributes();
    for (;;) {
        switch (*position) {
        case '\0':
            openElement(name);
            return true;
        case '>':
            openElement(name);
            ++position;
            return true;
        case '/':
            openElement(name);
            return readEndTag();
        default:
            if (!readAttribute())
                return false;
        }
    }
}

void XMLReader::startAttributes()
{
    attributes.first = nullptr;
    attributeEnd = XMLAttributeAppender(&attributes);
    attributeCount = 0;
    if (!attributeIndex.empty())
        attributeIndex = {};
}

bool XMLReader::readAttribute()
{
    if (!CharacterClass::is(CharacterClass::NameStart, *position))
        return fail(Error::BadName);
    const Span name = readName();
    skipSpace();
    if (*position != '=')
        return true;
    ++position;
    skipSpace();
    if (*position == '"')
        setAttribute(name, readQuoted());
    return true;
}

/// A name that the tag has already gets its value replaced in its place.
inline void XMLReader::setAttribute(const Span &name, const Span &value)
{
    // The newlines up to here are counted first: no later search could see beyond a NUL.
    lineAt(position);
    *name.end = '\0';
    *value.end = '\0';
    if (ampersands.isBefore(value.end))
        decodeReferences(value.start, value.end, value.start, false);
    if (attributeCount == mostComparedNames) {
        setIndexedAttribute(name.view(), value.start);
        return;
    }
    for (XMLAttribute &attribute : attributes) {
        if (*attribute.name == *name.start && std::strcmp(attribute.name, name.start) == 0) {
            attribute.value = value.start;
            return;
        }
    }
    attributeEnd.append(name.start, value.start);
    ++attributeCount;
}

void XMLReader::setIndexedAttribute(std::string_view name, const char *value)
{
    if (attributeIndex.empty()) {
        for (XMLAttribute &attribute : attributes)
            attributeIndex.emplace(attribute.name, &attribute);
    }
    const auto [entry, isNew] = attributeIndex.try_emplace(name, nullptr);
    if (isNew)
        entry->second = attributeEnd.append(name.data(), value);
    else
        entry->second->value = value;
}

/// Makes the element of the tag that was read up to here.
void XMLReader::openElement(const Span &name)
{
    XMLElement *element = document->createElement(endText(name));
    element->line = markupLine;
    // An element of a subclass can come with attributes of its own.
    const bool isBare = element->attributes().isEmpty();
    if (isBare) {
        element->attributes() = attributes;
        if (!dollars.isBefore(position) && !ampersands.isBefore(position))
            element->setLiteral();
    } else {
        for (const XMLAttribute &attribute : attributes)
            element->setAttribute(attribute.name, attribute.value);
    }
    open.push_back({element, &element->firstChild});
}

/// Ends \a text, all of which and the byte behind it was read, with a NUL.
const char *XMLReader::endText(const Span &text)
{
    lineAt(position);
    *text.end = '\0';
    return text.start;
}

/// An end tag, or the end of an empty-element tag, from its '/'.
bool XMLReader::readEndTag()
{
    ++position;
    if (*position != '>') {
        const Span name = readName();
        skipSpace();
        // A beginning of the open element's name will do, the empty one included.
        if (!open.empty() && !beginsWith(open.back().element->name(), name.view()))
            return fail(Error::Mismatch);
    }
    if (*position == '>') {
        closeElement();
        ++position;
    }
    return true;
}

void XMLReader::closeElement()
{
    if (open.empty())
        return;
    XMLElement *element = open.back().element;
    open.pop_back();
    if (open.empty())
        result = element;
    else
        append(element, element->line);
}

void XMLReader::readCharacterData()
{
    char *const start = position;
    position = findByte('<', start);
    if (!keepComments || open.empty())
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

bool XMLReader::fail(Error what)
{
    failure = what;
    failureLine = lineAt(position);
    return false;
}

void XMLReader::countLines(const char *where)
{
    while (nextNewline <= where && *nextNewline != '\0') {
        line = static_cast<int>(static_cast<unsigned>(line) + 1);
        nextNewline = findByte('\n', nextNewline + 1);
    }
}

#include "xmlwriter.h"

#include "characterclass.h"
#include "xmldocument.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

namespace
{

/// For the short pieces that fit the slack of the buffer.
inline char *append(char *to, std::string_view piece)
{
    std::memcpy(to, piece.data(), piece.size());
    return to + piece.size();
}

}  // namespace

// What is read of the buffer was written there before; a small document uses little of it.
// cppcheck-suppress uninitMemberVar
XMLWriter::XMLWriter(FILE *target, int spacesPerLevel) : stream(target), indent(spacesPerLevel) {}

void XMLWriter::writeDocument(const XMLDocument &document)
{
    char *to = buffer;
    const auto appendBetween = [&](const char *before, const char *text, const char *after) {
        if (text)
            to = append(appendText(append(to, before), text), after);
    };
    if (document.version || document.encoding) {
        to = append(to, "<?xml ");
        appendBetween(" version=\"", document.version, "\"");
        appendBetween(" encoding=\"", document.encoding, "\"");
        to = append(to, " ?>\n");
    }
    appendBetween("<!DOCTYPE ", document.doctype, ">\n");
    flush(appendTree(to, document.root, 0));
}

void XMLWriter::writeNode(const XMLNode *node, long long depth)
{
    flush(appendTree(buffer, node, depth));
}

char *XMLWriter::appendTree(char *to, const XMLNode *node, long long depth)
{
    if (!node)
        return appendIndentation(to, depth);
    std::vector<const XMLNode *> open;
    for (;;) {
        // What directives left lies far apart, so the next one is fetched while this is written.
        __builtin_prefetch(node->nextSibling);
        to = appendNode(to, node, depth);
        if (node->kind() == XMLNode::Kind::Element && node->firstChild) {
            open.push_back(node);
            ++depth;
            node = node->firstChild;
            continue;
        }
        while (!open.empty() && !node->nextSibling) {
            node = open.back();
            open.pop_back();
            to = appendEndTag(to, static_cast<const XMLElement *>(node), --depth);
        }
        if (open.empty())
            return to;
        node = node->nextSibling;
    }
}

void XMLWriter::writeEscaped(const char *text)
{
    flush(appendEscaped(buffer, text));
}

/// All of \a node that stands before its children.
char *XMLWriter::appendNode(char *to, const XMLNode *node, long long depth)
{
    to = appendIndentation(to, depth);
    switch (node->kind()) {
    case XMLNode::Kind::Element:
        return appendStartTag(to, static_cast<const XMLElement *>(node));
    case XMLNode::Kind::Data:
        return appendEscaped(to, static_cast<const XMLText *>(node)->data());
    case XMLNode::Kind::Comment:
        to = appendText(append(to, "<!--"), static_cast<const XMLText *>(node)->data());
        return append(to, "-->");
    case XMLNode::Kind::CDATASection:
        to = appendText(append(to, "<![CDATA["), static_cast<const XMLText *>(node)->data());
        return append(to, "]]>");
    case XMLNode::Kind::Other:
        break;
    }
    return to;
}

/// Appends *text up to the first byte that is not \a wanted, which the NUL is not, and leaves
/// *text there. The slack takes eight bytes, so the end of the buffer is looked for only once for
/// as many.
template <typename Wanted>
inline char *XMLWriter::appendWhile(char *to, const char **text, Wanted wanted)
{
    const char *from = *text;
    for (;;) {
        if (to >= bufferEnd)
            to = flush(to);
#pragma GCC unroll 8
        for (int step = 0; step < 8; ++step) {
            if (!wanted(*from)) {
                *text = from;
                return to;
            }
            *to++ = *from++;
        }
    }
}

inline char *XMLWriter::appendText(char *to, const char *text)
{
    return appendWhile(to, &text, [](char byte) { return byte != '\0'; });
}

inline char *XMLWriter::appendEscaped(char *to, const char *text)
{
    if (!text)
        return to;
    const auto isPlain = [](char byte) { return CharacterClass::is(CharacterClass::Plain, byte); };
    for (;;) {
        to = appendWhile(to, &text, isPlain);
        if (*text == '\0')
            return to;
        to = appendReference(to, static_cast<unsigned char>(*text++));
    }
}

char *XMLWriter::appendStartTag(char *to, const XMLElement *element)
{
    to = appendText(append(to, "<"), element->name());
    for (const XMLAttribute &attribute : element->attributes()) {
        to = append(appendText(append(to, " "), attribute.name), "=\"");
        to = append(appendEscaped(to, attribute.value), "\"");
    }
    to = append(to, element->firstChild ? ">" : "/>");
    return indent != 0 ? append(to, "\n") : to;
}

char *XMLWriter::appendEndTag(char *to, const XMLElement *element, long long depth)
{
    to = append(appendIndentation(to, depth), "</");
    to = append(appendText(to, element->name()), ">");
    return indent != 0 ? append(to, "\n") : to;
}

char *XMLWriter::appendReference(char *to, unsigned char byte)
{
    static constexpr char digits[] = "0123456789abcdef";
    switch (byte) {
    case '"':
        return append(to, "&quot;");
    case '&':
        return append(to, "&amp;");
    case '<':
        return append(to, "&lt;");
    case '>':
        return append(to, "&gt;");
    default:
        to = append(to, "&#x");
        if (byte >= 0x10)
            *to++ = digits[byte >> 4];
        *to++ = digits[byte & 0xF];
        *to++ = ';';
        return to;
    }
}

inline char *XMLWriter::appendIndentation(char *to, long long depth)
{
    if (to >= bufferEnd)
        to = flush(to);
    long long spaces = indent * depth;
    // A copy of a fixed length costs less than one that is just as long as it has to be.
    constexpr std::string_view few = "                ";
    if (spaces >= 0 && spaces <= static_cast<long long>(few.size())) {
        append(to, few);
        return to + spaces;
    }
    while (spaces > 0) {
        if (to >= bufferEnd)
            to = flush(to);
        const auto run = std::min(spaces, static_cast<long long>(bufferEnd - to));
        std::memset(to, ' ', static_cast<std::size_t>(run));
        to += run;
        spaces -= run;
    }
    return to;
}

/// Hands the buffer's content up to \a to over. Returns where the next byte goes.
char *XMLWriter::flush(char *to)
{
    std::fwrite(buffer, 1, static_cast<std::size_t>(to - buffer), stream);
    return buffer;
}

#include "xmlwriter.h"

#include "characterclass.h"
#include "xmldocument.h"

#include <algorithm>
#include <cstring>
#include <vector>

/// For what is short, as all that the writer adds is.
inline void XMLWriter::write(std::string_view text)
{
    if (text.size() > static_cast<std::size_t>(bufferEnd - next))
        flush();
    std::memcpy(next, text.data(), text.size());
    next += text.size();
}

inline void XMLWriter::put(char c)
{
    write({&c, 1});
}

XMLWriter::XMLWriter(FILE *target, int spacesPerLevel)
    : stream(target),
      indent(spacesPerLevel),
      buffer(new char[bufferSize]),
      next(buffer.get()),
      bufferEnd(next + bufferSize)
{
}

XMLWriter::~XMLWriter()
{
    flush();
}

void XMLWriter::writeDocument(const XMLDocument &document)
{
    const auto writeBetween = [this](const char *before, const char *text, const char *after) {
        if (!text)
            return;
        writeText(before);
        writeText(text);
        writeText(after);
    };
    if (document.version || document.encoding) {
        write("<?xml ");
        writeBetween(" version=\"", document.version, "\"");
        writeBetween(" encoding=\"", document.encoding, "\"");
        write(" ?>\n");
    }
    writeBetween("<!DOCTYPE ", document.doctype, ">\n");
    writeNode(document.root, 0);
}

void XMLWriter::writeNode(const XMLNode *node, long long depth)
{
    std::vector<const XMLNode *> open;
    for (;;) {
        if (writeOpening(node, depth)) {
            open.push_back(node);
            ++depth;
            node = node->firstChild;
            continue;
        }
        while (!open.empty() && !node->nextSibling) {
            node = open.back();
            open.pop_back();
            writeEndTag(static_cast<const XMLElement *>(node), --depth);
        }
        if (open.empty())
            return;
        node = node->nextSibling;
    }
}

/// All of \a node that stands before its children; true when there are children to be written.
bool XMLWriter::writeOpening(const XMLNode *node, long long depth)
{
    writeIndentation(depth);
    if (!node)
        return false;
    switch (node->kind()) {
    case XMLNode::Kind::Element:
        writeStartTag(static_cast<const XMLElement *>(node));
        return node->firstChild != nullptr;
    case XMLNode::Kind::Data:
        writeEscaped(static_cast<const XMLText *>(node)->data());
        return false;
    case XMLNode::Kind::Comment:
        write("<!--");
        writeText(static_cast<const XMLText *>(node)->data());
        write("-->");
        return false;
    case XMLNode::Kind::CDATASection:
        write("<![CDATA[");
        writeText(static_cast<const XMLText *>(node)->data());
        write("]]>");
        return false;
    case XMLNode::Kind::Other:
        break;
    }
    return false;
}

void XMLWriter::writeStartTag(const XMLElement *element)
{
    put('<');
    writeText(element->name());
    for (const XMLAttribute &attribute : element->attributes()) {
        put(' ');
        writeText(attribute.name);
        write("=\"");
        writeEscaped(attribute.value);
        put('"');
    }
    write(element->firstChild ? ">" : "/>");
    writeLineFeed();
}

void XMLWriter::writeEndTag(const XMLElement *element, long long depth)
{
    writeIndentation(depth);
    write("</");
    writeText(element->name());
    put('>');
    writeLineFeed();
}

// The two loops below keep their pointers in locals: through next, every byte that is written
// would count as a possible change of next itself.

void XMLWriter::writeText(const char *text)
{
    for (;;) {
        char *to = next;
        while (to != bufferEnd && *text != '\0')
            *to++ = *text++;
        next = to;
        if (*text == '\0')
            return;
        flush();
    }
}

void XMLWriter::writeEscaped(const char *text)
{
    if (!text)
        return;
    for (;;) {
        char *to = next;
        while (to != bufferEnd && CharacterClass::is(CharacterClass::Plain, *text))
            *to++ = *text++;
        next = to;
        if (to == bufferEnd)
            flush();
        else if (*text == '\0')
            return;
        else
            writeReference(static_cast<unsigned char>(*text++));
    }
}

void XMLWriter::writeReference(unsigned char byte)
{
    static constexpr char digits[] = "0123456789abcdef";
    switch (byte) {
    case '"':
        return write("&quot;");
    case '&':
        return write("&amp;");
    case '<':
        return write("&lt;");
    case '>':
        return write("&gt;");
    default:
        write("&#x");
        if (byte >= 0x10)
            put(digits[byte >> 4]);
        put(digits[byte & 0xF]);
        put(';');
    }
}

void XMLWriter::writeIndentation(long long depth)
{
    for (long long spaces = indent * depth; spaces > 0;) {
        if (next == bufferEnd)
            flush();
        const auto run = std::min(spaces, static_cast<long long>(bufferEnd - next));
        std::memset(next, ' ', static_cast<std::size_t>(run));
        next += run;
        spaces -= run;
    }
}

void XMLWriter::writeLineFeed()
{
    if (indent != 0)
        put('\n');
}

void XMLWriter::flush()
{
    std::fwrite(buffer.get(), 1, static_cast<std::size_t>(next - buffer.get()), stream);
    next = buffer.get();
}

#include "xmldocument.h"

#include "inputtext.h"
#include "outputfile.h"
#include "xmlcopy.h"
#include "xmlreader.h"
#include "xmlwriter.h"

#include <cstring>

char *XMLDocument::copyString(const char *text, std::size_t length)
{
    char *copy = static_cast<char *>(Pool::allocateCurrent(length + 1));
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

XMLNode *XMLDocument::copyNode(const XMLNode *source, XMLNode *newParent)
{
    XMLNode *copy = copySubtree(source, [this](const XMLNode *node) { return copyOne(node); });
    if (copy && newParent)
        newParent->appendChild(copy);
    return copy;
}

XMLNode *XMLDocument::copyOne(const XMLNode *source)
{
    switch (source->kind()) {
    case XMLNode::Kind::Element: {
        const auto *element = static_cast<const XMLElement *>(source);
        XMLElement *copy = createElement(element->name());
        copy->addAttributes(element->attributes());
        return copy;
    }
    case XMLNode::Kind::Data:
        return new XMLData(static_cast<const XMLText *>(source)->data());
    case XMLNode::Kind::Comment:
        return new XMLComment(static_cast<const XMLText *>(source)->data());
    case XMLNode::Kind::CDATASection:
        return new XMLCDATASection(static_cast<const XMLText *>(source)->data());
    case XMLNode::Kind::Other:
        break;
    }
    return nullptr;
}

bool XMLDocument::parse(char *text)
{
    const CurrentPool current(this);
    const std::size_t length = std::strlen(text);
    return parseOwn({copyString(text, length), length});
}

/// parse() with text that lies in the pool, has a NUL behind it and becomes part of the tree.
bool XMLDocument::parseOwn(std::span<char> text)
{
    XMLReader reader(this, text);
    root = reader.read();
    if (!reader.error())
        return true;
    errorLine = reader.errorLine();
    return fail(reader.error(), "");
}

bool XMLDocument::read(FILE *stream)
{
    std::rewind(stream);
    return readOn(stream, "");
}

bool XMLDocument::load(const char *fileName)
{
    InputStream stream;
    if (!onlyReadableAgain || canBeReadAgain(fileName))
        stream = openInput(fileName);
    return readOn(stream.get(), fileName);
}

/// parse() with what \a stream, which can be null, holds from where it stands. \a fileName is
/// only for the message.
bool XMLDocument::readOn(FILE *stream, const char *fileName)
{
    std::span<char> text;
    passedReadLimit = false;
    if (stream)
        text = readText(stream, readLimit, this, &passedReadLimit);
    if (text.data())
        return parseOwn(text);
    errorLine = 0;
    return fail("couldn't read ", fileName);
}

bool XMLDocument::write(FILE *stream, int spacesPerLevel)
{
    indent = spacesPerLevel;
    XMLWriter(stream, indent).writeDocument(*this);
    return true;
}

bool XMLDocument::save(const char *fileName, int spacesPerLevel, OutputFile *companion)
{
    // Before the file is opened, which may have to be written in place.
    if (companion && !companion->finish())
        return fail("couldn't write ", companion->name());
    OutputFile file(fileName);
    if (file.stream())
        write(file.stream(), spacesPerLevel);
    return commit(&file, companion);
}

bool XMLDocument::commit(OutputFile *file, OutputFile *companion)
{
    // Both have to be whole before either takes its place.
    for (const auto step : {&OutputFile::finish, &OutputFile::commit}) {
        for (OutputFile *each : {companion, file}) {
            if (each && !(each->*step)())
                return fail("couldn't write ", each->name());
        }
    }
    return true;
}

void XMLDocument::writeNode(FILE *stream, const XMLNode *node, int depth) const
{
    XMLWriter(stream, indent).writeNode(node, depth);
}

void XMLDocument::writeEscaped(FILE *stream, const char *text)
{
    XMLWriter(stream, 0).writeEscaped(text);
}

bool XMLDocument::fail(const char *message, const char *fileName)
{
    std::snprintf(errorMessage, sizeof errorMessage, "%s%s", message, fileName);
    return false;
}

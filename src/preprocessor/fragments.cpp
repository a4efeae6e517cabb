#include "walk.h"

#include <cstring>
#include <vector>

namespace
{

std::size_t lengthOf(const char *text)
{
    return text ? std::strlen(text) : 0;
}

/// The bytes of all names, values and texts of the element and what is below it.
std::size_t textOf(const XMLNode *fragment)
{
    std::size_t bytes = 0;
    std::vector<const XMLNode *> chains{fragment};
    while (!chains.empty()) {
        const XMLNode *node = chains.back();
        chains.pop_back();
        if (node != fragment && node->nextSibling)
            chains.push_back(node->nextSibling);
        if (node->firstChild)
            chains.push_back(node->firstChild);
        if (node->kind() == XMLNode::Kind::Element) {
            const auto &element = static_cast<const XMLElement &>(*node);
            bytes += lengthOf(element.name());
            for (const XMLAttribute &attribute : element.attributes())
                bytes += lengthOf(attribute.name) + lengthOf(attribute.value);
        } else if (node->kind() != XMLNode::Kind::Other) {
            bytes += lengthOf(static_cast<const XMLText *>(node)->data());
        }
    }
    return bytes;
}

}  // namespace

Outcome Walk::handleXmldef(XMLElement &element, const Level &)
{
    if (!element.hasAttribute("name"))
        return Outcome::ordinary();
    document.xmldefs.insert(QString::fromLatin1(element.attribute("name")), &element);
    return Outcome::remove();
}

Outcome Walk::handleXmlput(XMLElement &element, const Level &level)
{
    if (!element.hasAttribute("name"))
        return Outcome::ordinary();
    const QString name = QString::fromLatin1(element.attribute("name"));
    const XMLNode *stored = document.xmldefs.value(name);
    if (!stored) {
        report(QStringLiteral("xmlput cannot fine xmldef named ") + name);
        return Outcome::ordinary();
    }
    const auto [text, isNew] = textOfFragments.try_emplace(stored);
    if (isNew)
        text->second = textOf(stored);
    work += stepsPerByteShared * text->second;
    return {.replacement = document.copyNode(stored, nullptr),
            .scope = contentScope(element, level, level.fileName)};
}

#include "qxmldocument.h"

#include "macrovalues.h"
#include "xmlcopy.h"

#include <cstring>
#include <string>

bool QXMLDocument::load(const QString &fileName)
{
    return XMLDocument::load(fileName.toLatin1().constData());
}

bool QXMLDocument::save(const QString &fileName, int spacesPerLevel)
{
    return XMLDocument::save(fileName.toLatin1().constData(), spacesPerLevel);
}

XMLElement *QXMLDocument::copyElementExpanded(const XMLElement *source, const MacroMap &macros)
{
    MapLookup lookup(&macros);
    return copyElementExpanded(source, lookup);
}

XMLElement *QXMLDocument::copyElementExpanded(const XMLElement *source, MacroLookup &macros)
{
    const auto copyOne = [&](const XMLNode *node) -> XMLNode * {
        if (node->kind() != XMLNode::Kind::Element)
            return nullptr;
        return copyOneExpanded(static_cast<const XMLElement *>(node), macros);
    };
    return static_cast<XMLElement *>(copySubtree(source, copyOne));
}

XMLElement *QXMLDocument::copyOneExpanded(const XMLElement *source, MacroLookup &macros)
{
    XMLElement *copy = createElement(source->name());
    const bool isBare = copy->attributes().empty();
    std::span<XMLAttribute> copied;
    if (isBare)
        copied = copy->makeAttributes(source->attributes().size());
    bool isLiteral = true;
    for (const XMLAttribute &attribute : source->attributes()) {
        std::string_view text = attribute.value ? attribute.value : "";
        const bool hasReferences = !source->isLiteral() && text.find('$') != std::string_view::npos;
        bool isNull = text.empty();
        if (hasReferences) {
            isNull = !globalMacros.expandLatin1(macros, text, &expansion);
            text = expansion;
            isLiteral = isLiteral && text.find('$') == std::string_view::npos;
        }
        const char *value = isNull ? nullptr : copyString(text.data(), text.size());
        const char *name = copyString(attribute.name, std::strlen(attribute.name));
        if (isBare) {
            copied.front() = {name, value};
            copied = copied.subspan(1);
        } else {
            copy->setAttribute(name, value);
        }
    }
    if (isLiteral && isBare)
        copy->setLiteral();
    return copy;
}

void QXMLDocument::expandAttributes(XMLElement *element, const MacroMap &macros)
{
    MapLookup lookup(&macros);
    expandAttributes(element, lookup);
}

void QXMLDocument::expandAttributes(XMLElement *element, MacroLookup &macros)
{
    if (element->isLiteral())
        return;
    for (XMLAttribute &attribute : element->attributes()) {
        if (!attribute.value || !std::strchr(attribute.value, '$'))
            continue;
        globalMacros.expandLatin1(macros, attribute.value, &expansion);
        if (expansion != attribute.value)
            attribute.value = copyString(expansion.data(), expansion.size());
    }
}

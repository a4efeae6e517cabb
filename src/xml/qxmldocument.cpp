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
    const auto copyOne = [&](const XMLNode *node) -> XMLNode * {
        if (node->kind() != XMLNode::Kind::Element)
            return nullptr;
        return copyOneExpanded(static_cast<const XMLElement *>(node), macros);
    };
    return static_cast<XMLElement *>(copySubtree(source, copyOne));
}

XMLElement *QXMLDocument::copyOneExpanded(const XMLElement *source, const MacroMap &macros)
{
    XMLElement *copy = createElement(source->name());
    XMLAttributeAppender copied(&copy->attributes());
    std::string expanded;
    for (const XMLAttribute &attribute : source->attributes()) {
        const std::string_view text = attribute.value ? attribute.value : "";
        const char *value = nullptr;
        if (globalMacros.expandLatin1(macros, text, false, &expanded))
            value = copyString(expanded.data(), expanded.size());
        copied.append(copyString(attribute.name, std::strlen(attribute.name)), value);
    }
    return copy;
}

void QXMLDocument::expandAttributes(XMLElement *element, const MacroMap &macros)
{
    if (element->isLiteral())
        return;
    std::string expanded;
    for (XMLAttribute &attribute : element->attributes()) {
        if (!attribute.value || !std::strchr(attribute.value, '$'))
            continue;
        globalMacros.expandLatin1(macros, attribute.value, false, &expanded);
        if (expanded != attribute.value)
            attribute.value = copyString(expanded.data(), expanded.size());
    }
}

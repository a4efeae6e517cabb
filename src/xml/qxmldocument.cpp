#include "qxmldocument.h"

#include "macrovalues.h"
#include "xmlcopy.h"

#include <cstring>

XMLElement *QXMLDocument::copyElementExpanded(const XMLElement *source, const MacroMap &macros)
{
    MapLookup lookup(&macros);
    std::uint64_t steps = 0;
    return copyElementExpanded(source, lookup, &steps);
}

XMLElement *QXMLDocument::copyElementExpanded(const XMLElement *source, MacroLookup &macros,
                                              std::uint64_t *steps)
{
    const auto copyOne = [&](const XMLNode *node) -> XMLNode * {
        if (node->kind() != XMLNode::Kind::Element)
            return nullptr;
        return copyOneExpanded(static_cast<const XMLElement *>(node), macros, steps);
    };
    return static_cast<XMLElement *>(copySubtree(source, copyOne));
}

XMLElement *QXMLDocument::copyOneExpanded(const XMLElement *source, MacroLookup &macros,
                                          std::uint64_t *steps)
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
        if (hasReferences) {
            *steps += globalMacros.expand(macros, text, &expansion);
            text = expansion;
            isLiteral = isLiteral && text.find('$') == std::string_view::npos;
        }
        const char *value = text.empty() ? nullptr : copyString(text.data(), text.size());
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

std::uint64_t QXMLDocument::expandAttributes(XMLElement *element, MacroLookup &macros)
{
    if (element->isLiteral())
        return 0;
    std::uint64_t steps = 0;
    for (XMLAttribute &attribute : element->attributes()) {
        if (!attribute.value || !std::strchr(attribute.value, '$'))
            continue;
        steps += globalMacros.expand(macros, attribute.value, &expansion);
        if (expansion != attribute.value)
            attribute.value = copyString(expansion.data(), expansion.size());
    }
    return steps;
}

#include "qxmldocument.h"

#include "macrovalues.h"
#include "xmlcopy.h"

#include <algorithm>
#include <cstring>

namespace
{

/// What it costs to look for references where there are none, as measured.
constexpr std::uint64_t stepsPerAttribute = 4;
constexpr std::size_t charactersPerStep = 64;

/// Where the first '$' in \a text is, or its end. Most values are so short that a call would cost more
/// than the search.
const char *findReference(const char *text)
{
    for (int step = 0; step < 8; ++step, ++text) {
        if (*text == '$' || *text == '\0')
            return text;
    }
    const char *const found = std::strchr(text, '$');
    return found ? found : text + std::strlen(text);
}

/// Whether there is a '$' in \a value. Adds what it cost to find out.
bool hasReference(const char *value, std::uint64_t *steps)
{
    const char *const found = findReference(value);
    *steps += stepsPerAttribute + static_cast<std::size_t>(found - value) / charactersPerStep;
    return *found == '$';
}

}  // namespace

XMLElement *QXMLDocument::copyElementExpanded(const XMLElement *source, const MacroMap &macros)
{
    MapLookup lookup(&macros);
    std::uint64_t steps = 0;
    return copyExpanded(source, lookup, Strings::Copied, &steps);
}

XMLElement *QXMLDocument::copyElementExpanded(const XMLElement *source, MacroLookup &macros,
                                              std::uint64_t *steps)
{
    return copyExpanded(source, macros, Strings::Shared, steps);
}

XMLElement *QXMLDocument::copyExpanded(const XMLElement *source, MacroLookup &macros,
                                       Strings strings, std::uint64_t *steps)
{
    const auto copyOne = [&](const XMLNode *node) -> XMLNode * {
        if (node->kind() != XMLNode::Kind::Element)
            return nullptr;
        return copyOneExpanded(static_cast<const XMLElement *>(node), macros, strings, steps);
    };
    return static_cast<XMLElement *>(copySubtree(source, copyOne));
}

XMLElement *QXMLDocument::copyOneExpanded(const XMLElement *source, MacroLookup &macros,
                                          Strings strings, std::uint64_t *steps)
{
    const auto kept = [&](const char *text) {
        return strings == Strings::Shared ? text : copyString(text, std::strlen(text));
    };
    attributes.clear();
    bool isLiteral = true;
    for (const XMLAttribute &attribute : source->attributes()) {
        const char *value = attribute.value;
        if (value && !source->isLiteral() && hasReference(value, steps)) {
            value = expanded(value, macros, steps).data();
            isLiteral = isLiteral && *findReference(value) == '\0';
        }
        if (value && value == attribute.value)
            value = kept(value);
        if (value && *value == '\0')
            value = nullptr;
        attributes.push_back({kept(attribute.name), value});
    }
    XMLElement *copy = createElement(source->name());
    if (copy->addAttributes(attributes) && isLiteral)
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
    std::uint64_t steps = 0;
    if (element->isLiteral())
        return steps;
    for (XMLAttribute &attribute : element->attributes()) {
        if (attribute.value && hasReference(attribute.value, &steps))
            attribute.value = expanded(attribute.value, macros, &steps).data();
    }
    return steps;
}

/// \a text itself where its expansion equals it, else the expansion: in the current pool, with a NUL
/// behind it.
std::string_view QXMLDocument::expanded(std::string_view text, MacroLookup &macros,
                                        std::uint64_t *steps)
{
    const std::span<char> room = Pool::currentRoom();
    std::string_view result(room.data(), globalMacros.expandPlain(macros, text, room, steps));
    if (result.size() == MacroValues::notPlain) {
        *steps += globalMacros.expand(macros, text, &expansion);
        result = expansion;
    }
    if (result == text)
        return text;
    // That is where a plain expansion is already, unless there is no room for the NUL.
    char *kept = static_cast<char *>(Pool::allocateCurrent(result.size() + 1));
    if (kept != result.data())
        std::copy(result.begin(), result.end(), kept);
    kept[result.size()] = '\0';
    return {kept, result.size()};
}

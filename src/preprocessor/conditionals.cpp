#include "alternatives.h"
#include "walk.h"

#include <cstring>

Outcome Walk::handleIf(XMLElement &element, const Level &)
{
    return unwrapByAttribute(element, true);
}

Outcome Walk::handleIfnot(XMLElement &element, const Level &)
{
    return unwrapByAttribute(element, false);
}

/// The one attribute names a macro and lists alternatives; \a wanted tells whether one of them
/// must be the macro's value.
Outcome Walk::unwrapByAttribute(XMLElement &element, bool wanted)
{
    const std::span<const XMLAttribute> attributes = std::as_const(element).attributes();
    if (attributes.size() != 1) {
        report(QStringLiteral("one condition required for <if[not]>"));
        return Outcome::ordinary();
    }
    const bool matches = hasAlternative(attributes[0].value, lookUpOrDefine(attributes[0].name));
    return Outcome::unwrapIf(matches == wanted, element);
}

Outcome Walk::handleIfex(XMLElement &element, const Level &)
{
    const char *expression = attributeText(element, "expression");
    if (*expression == '\0')
        return Outcome::ordinary();
    bool ok = false;
    const bool value = evaluated(&SimpleExpressionParser::evaluateBool, expanded(expression), &ok);
    return Outcome::unwrapIf(ok && value, element);
}

bool Walk::isDefined(const XMLElement &element) const
{
    return macros.contains(attributeText(element, "name"));
}

Outcome Walk::handleIfdef(XMLElement &element, const Level &)
{
    return Outcome::unwrapIf(isDefined(element), element);
}

Outcome Walk::handleIfndef(XMLElement &element, const Level &)
{
    return Outcome::unwrapIf(!isDefined(element), element);
}

/// The first <case> with a matching alternative is selected, else the last <default>. That is
/// settled before the children are walked, so alternatives count as they are written.
Outcome Walk::handleSwitch(XMLElement &element, const Level &)
{
    const std::string_view value = lookUpOrDefine(attributeText(element, "name"));
    XMLNode *selected = nullptr;
    for (XMLNode *child = element.firstChild; child; child = child->nextSibling) {
        if (child->kind() != XMLNode::Kind::Element)
            continue;
        const auto &branch = static_cast<const XMLElement &>(*child);
        if (std::strcmp(branch.name(), "default") == 0) {
            selected = child;
        } else if (std::strcmp(branch.name(), "case") == 0 &&
                   hasAlternative(branch.attribute("value"), value)) {
            selected = child;
            break;
        }
    }
    return selected ? Outcome{.replacement = selected} : Outcome::remove();
}

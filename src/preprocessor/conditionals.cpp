#include "pieces.h"
#include "run.h"

#include <cstring>
#include <string_view>
#include <utility>

namespace directive
{

namespace
{

bool isNamed(const XMLElement &element, const char *name)
{
    return std::strcmp(element.name(), name) == 0;
}

/// Whether one of the alternatives in \a list, separated by ',', is \a value to the letter.
bool hasAlternative(Run &run, std::string_view list, std::string_view value)
{
    bool found = false;
    forEachPiece(&run.budget, Price::Alternative, list, ',',
                 [&](std::string_view alternative) { found = found || alternative == value; });
    return found;
}

/// The value of a macro, which becomes defined as empty when it is not defined yet.
std::string_view lookUpOrDefine(Run &run, std::string_view name)
{
    run.budget.spend(Price::NameCharacter, name.size());
    std::string_view value;
    if (!run.macros.find(name, &value))
        run.macros.set(name, "");
    return value;
}

}  // namespace

/// <if> and <ifnot>. The one attribute names a macro and lists alternatives for its value.
Outcome handleIf(Run &run, XMLElement &element, const Level &)
{
    const std::span<const XMLAttribute> attributes = std::as_const(element).attributes();
    if (attributes.size() != 1) {
        run.report("one condition required for <if[not]>");
        return Outcome::keep();
    }
    const std::string_view value = lookUpOrDefine(run, attributes[0].name);
    const bool matches = hasAlternative(run, textOf(attributes[0]), value);
    return Outcome::unwrapIf(matches == isNamed(element, "if"), element);
}

Outcome handleIfex(Run &run, XMLElement &element, const Level &)
{
    const std::string_view expression = attributeText(element, "expression");
    if (expression.empty())
        return Outcome::keep();
    bool ok = false;
    const bool value =
        run.evaluated(&SimpleExpressionParser::evaluateBool, run.expanded(expression), &ok);
    return Outcome::unwrapIf(ok && value, element);
}

/// <ifdef> and <ifndef>.
Outcome handleIfdef(Run &run, XMLElement &element, const Level &)
{
    const std::string_view name = attributeText(element, "name");
    run.budget.spend(Price::NameCharacter, name.size());
    return Outcome::unwrapIf(run.macros.contains(name) == isNamed(element, "ifdef"), element);
}

/// The first <case> with a matching alternative is selected, else the last <default>. That is
/// settled before the children are walked, so alternatives count as they are written.
Outcome handleSwitch(Run &run, XMLElement &element, const Level &)
{
    const std::string_view value = lookUpOrDefine(run, attributeText(element, "name"));
    XMLElement *selected = nullptr;
    for (XMLNode *child = element.firstChild; child; child = child->nextSibling) {
        if (child->kind() != XMLNode::Kind::Element)
            continue;
        auto &branch = static_cast<XMLElement &>(*child);
        if (isNamed(branch, "default")) {
            selected = &branch;
        } else if (isNamed(branch, "case") &&
                   hasAlternative(run, attributeText(branch, "value"), value)) {
            selected = &branch;
            break;
        }
    }
    return selected ? Outcome{Outcome::Action::Branch, selected} : Outcome::remove();
}

}  // namespace directive

#include "pieces.h"
#include "run.h"

#include <cstring>
#include <string_view>
#include <utility>

namespace directive
{

namespace
{

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

/// The one attribute names a macro and lists alternatives; \a wanted tells whether one of them
/// must be the macro's value.
Outcome unwrapByAttribute(Run &run, XMLElement &element, bool wanted)
{
    const std::span<const XMLAttribute> attributes = std::as_const(element).attributes();
    if (attributes.size() != 1) {
        run.report("one condition required for <if[not]>");
        return Outcome::keep();
    }
    const std::string_view value = lookUpOrDefine(run, attributes[0].name);
    const bool matches = hasAlternative(run, textOf(attributes[0]), value);
    return Outcome::unwrapIf(matches == wanted, element);
}

bool isDefined(Run &run, const XMLElement &element)
{
    const std::string_view name = attributeText(element, "name");
    run.budget.spend(Price::NameCharacter, name.size());
    return run.macros.contains(name);
}

}  // namespace

Outcome handleIf(Run &run, XMLElement &element, const Level &)
{
    return unwrapByAttribute(run, element, true);
}

Outcome handleIfnot(Run &run, XMLElement &element, const Level &)
{
    return unwrapByAttribute(run, element, false);
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

Outcome handleIfdef(Run &run, XMLElement &element, const Level &)
{
    return Outcome::unwrapIf(isDefined(run, element), element);
}

Outcome handleIfndef(Run &run, XMLElement &element, const Level &)
{
    return Outcome::unwrapIf(!isDefined(run, element), element);
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
        if (std::strcmp(branch.name(), "default") == 0) {
            selected = &branch;
        } else if (std::strcmp(branch.name(), "case") == 0 &&
                   hasAlternative(run, attributeText(branch, "value"), value)) {
            selected = &branch;
            break;
        }
    }
    return selected ? Outcome{Outcome::Action::Branch, selected} : Outcome::remove();
}

}  // namespace directive

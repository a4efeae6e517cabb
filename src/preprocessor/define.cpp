#include "hexadecimal.h"
#include "run.h"

#include <cstdint>
#include <string>

namespace directive
{

namespace
{

void set(Run &run, std::string_view name, std::string_view value)
{
    run.budget.spend(Price::NameCharacter, name.size());
    run.budget.spendText(value.size());
    run.macros.set(name, value);
}

/// The low 32 bits of the value of the expression, if it has one.
void setNumber(Run &run, std::string_view name, std::string_view expression, bool isHexadecimal)
{
    bool ok = false;
    const auto number = static_cast<std::uint32_t>(
        run.evaluated(&SimpleExpressionParser::evaluateUnsigned, run.expanded(expression), &ok));
    if (ok)
        set(run, name, isHexadecimal ? toHexadecimal(number) : std::to_string(number));
}

}  // namespace

Outcome handleDefine(Run &run, XMLElement &element, const Level &)
{
    const std::string_view name = attributeText(element, "name");
    if (!element.hasAttribute("name"))
        run.report("missing name in <define>");
    else if (element.hasAttribute("value"))
        set(run, name, attributeText(element, "value"));
    else if (element.hasAttribute("expression"))
        setNumber(run, name, attributeText(element, "expression"), false);
    else if (element.hasAttribute("hex_expression"))
        setNumber(run, name, attributeText(element, "hex_expression"), true);
    else
        run.report("missing value or expression in <define>");
    return Outcome::remove();
}

}  // namespace directive

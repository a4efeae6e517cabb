#include "hexadecimal.h"
#include "walk.h"

Outcome Walk::handleDefine(XMLElement &element, const Level &)
{
    if (!element.hasAttribute("name")) {
        report(QStringLiteral("missing name in <define>"));
        return Outcome::remove();
    }
    const char *name = attributeText(element, "name");
    const bool isHex = !element.hasAttribute("expression");
    if (element.hasAttribute("value")) {
        macros.set(name, attributeText(element, "value"));
    } else if (!isHex || element.hasAttribute("hex_expression")) {
        const char *text = attributeText(element, isHex ? "hex_expression" : "expression");
        bool ok = false;
        const quint64 value =
            evaluated(&SimpleExpressionParser::evaluateUnsigned, expanded(text), &ok);
        const auto number = static_cast<std::uint32_t>(value);
        if (ok)
            macros.set(name, isHex ? toHexadecimal(number) : std::to_string(number));
    } else {
        report(QStringLiteral("missing value or expression in <define>"));
    }
    return Outcome::remove();
}

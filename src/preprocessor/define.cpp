#include "hexadecimal.h"
#include "walk.h"

Outcome Walk::handleDefine(XMLElement &element, const Level &)
{
    if (!element.hasAttribute("name")) {
        report(QStringLiteral("missing name in <define>"));
        return Outcome::remove();
    }
    const char *name = element.attribute("name") ? element.attribute("name") : "";
    const bool isHex = !element.hasAttribute("expression");
    if (element.hasAttribute("value")) {
        {
            const char *value = element.attribute("value");
            macros.set(name, value ? value : "");
        }
    } else if (!isHex || element.hasAttribute("hex_expression")) {
        const char *text = element.attribute(isHex ? "hex_expression" : "expression");
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

#include "hexadecimal.h"
#include "simpleexpressionparser.h"
#include "walk.h"

Outcome Walk::handleDefine(XMLElement &element, Level &level)
{
    if (!element.hasAttribute("name")) {
        report(QStringLiteral("missing name in <define>"));
        return Outcome::remove();
    }
    const QString name = QString::fromLatin1(element.attribute("name"));
    const bool isHex = !element.hasAttribute("expression");
    if (element.hasAttribute("value")) {
        level.macros.insert(name, QString::fromLatin1(element.attribute("value")));
    } else if (!isHex || element.hasAttribute("hex_expression")) {
        const char *text = element.attribute(isHex ? "hex_expression" : "expression");
        SimpleExpressionParser parser;
        bool ok = false;
        const quint64 value = parser.evaluateUnsigned(expanded(level, text).c_str(), &ok);
        const auto number = static_cast<std::uint32_t>(value);
        if (ok)
            level.macros.insert(name, isHex ? toHexadecimal(number) : QString::number(number));
    } else {
        report(QStringLiteral("missing value or expression in <define>"));
    }
    return Outcome::remove();
}

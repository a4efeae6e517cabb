#include "simpleexpressionparser.h"
#include "walk.h"

namespace
{

/// The low 32 bits of \a value, as "0x" and upper-case digits or in decimal.
QString format(std::uint32_t value, bool isHex)
{
    return isHex ? QStringLiteral("0x") + QString::number(value, 16).toUpper()
                 : QString::number(value);
}

}  // namespace

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
        if (ok)
            level.macros.insert(name, format(static_cast<std::uint32_t>(value), isHex));
    } else {
        report(QStringLiteral("missing value or expression in <define>"));
    }
    return Outcome::remove();
}

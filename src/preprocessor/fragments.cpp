#include "walk.h"

Outcome Walk::handleXmldef(XMLElement &element, Level &)
{
    if (!element.hasAttribute("name"))
        return Outcome::ordinary();
    document.xmldefs.insert(QString::fromLatin1(element.attribute("name")), &element);
    return Outcome::remove();
}

Outcome Walk::handleXmlput(XMLElement &element, Level &level)
{
    if (!element.hasAttribute("name"))
        return Outcome::ordinary();
    const QString name = QString::fromLatin1(element.attribute("name"));
    const XMLNode *stored = document.xmldefs.value(name);
    if (!stored) {
        report(QStringLiteral("xmlput cannot fine xmldef named ") + name);
        return Outcome::ordinary();
    }
    return {.replacement = document.copyNode(stored, nullptr),
            .scope = contentScope(element, level, level.fileName)};
}

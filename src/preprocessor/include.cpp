#include "filename.h"
#include "macrovalues.h"
#include "walk.h"

#include <cstring>
#include <string_view>
#include <unordered_map>

namespace
{

/// Sets on \a target the attributes of \a source that \a list names, separated by ';', in that
/// order. One that the source does not have is set without a value. Names are looked up through
/// indexes, however many there are.
void inheritAttributes(const XMLElement &source, const char *list, XMLElement *target)
{
    std::unordered_map<std::string_view, const char *, NameHash> values;
    for (const XMLAttribute &attribute : source.attributes())
        values.emplace(attribute.name, attribute.value);
    std::unordered_map<std::string_view, std::size_t, NameHash> present;
    for (std::size_t index = 0; index < target->attributes().size(); ++index)
        present.emplace(target->attributes()[index].name, index);
    for (;;) {
        const std::size_t length = std::strcspn(list, ";");
        const auto value = values.find({list, length});
        const char *inherited = value == values.end() ? nullptr : value->second;
        const std::size_t count = target->attributes().size();
        const auto [entry, isNew] = present.try_emplace({list, length}, count);
        if (length > 0 && isNew)
            target->appendAttribute(XMLDocument::copyString(list, length), inherited);
        else if (length > 0)
            target->attributes()[entry->second].value = inherited;
        if (list[length] == '\0')
            return;
        list += length + 1;
    }
}

}  // namespace

Outcome Walk::handleInclude(XMLElement &element, const Level &level)
{
    if (!element.hasAttribute("filename")) {
        report(QStringLiteral("missing filename in <include>"));
        return Outcome::ordinary();
    }
    const QString written = QString::fromLatin1(element.attribute("filename"));
    const QString path =
        resolveFileName(QString::fromLatin1(
 globalMacros.expandMacros({}, written.toLatin1().toStdString(), true)), level.fileName);
    if (level.includes >= limits.nestedIncludes) {
        reportAndStop(
            QStringLiteral("more than %1 nested includes at ").arg(limits.nestedIncludes) + path);
        return Outcome::ordinary();
    }
    XMLElement *included = loadInclude(path);
    if (!included)
        return Outcome::ordinary();

    auto scope = contentScope(element, level, path);
    ++scope->includes;
    if (scope->expand)
        work += document.expandAttributes(included, macros);
    if (const char *inherited = element.attribute("inherit_attributes"))
        inheritAttributes(element, inherited, included);

    const bool isWrapper =
        element.hasAttribute("no_root") || std::strcmp(included->name(), "envelope") == 0;
    // In the document's own root's place there is room for one element only.
    Outcome outcome{.scope = std::move(scope)};
    if (isWrapper && &element != firstRoot)
        outcome.replacement = included;
    else
        outcome.standIn = included;
    return outcome;
}

/// The root element of the file, which belongs to this document but is not linked to it. Null
/// after an error was reported.
XMLElement *Walk::loadInclude(const QString &path)
{
    work += stepsPerInclude;
    XMLNode *const root = document.root;
    const std::size_t bytesBefore = document.bytesUsed();
    const bool ok = document.load(path.toLatin1().toStdString());
    if (filesRead.insert(path).second)
        workAtMost += stepsPerByteRead * (document.bytesUsed() - bytesBefore);
    XMLNode *const included = document.root;
    document.root = root;
    if (ok && included)
        return static_cast<XMLElement *>(included);
    if (included) {
        const QString message = QString::fromLatin1(document.errorMessage);
        report(QStringLiteral("error \"") + message + QStringLiteral("\" in include file ") + path +
               QStringLiteral(" line:") + QString::number(document.errorLine));
    } else {
        report(QStringLiteral("error: include file '") + path + QStringLiteral("' is empty"));
    }
    return nullptr;
}

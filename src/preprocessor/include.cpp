#include "macrovalues.h"
#include "namehash.h"
#include "pieces.h"
#include "run.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace directive
{

namespace
{

/// Where the file that \a fileName names in the file \a includingFile is. A name that is empty or
/// does not begin with '/' is relative to the directory of the including file: what stands
/// before the last '/' of its name, "." where there is none, "/" for a file in the root.
std::string resolveFileName(const std::string &fileName, std::string_view includingFile)
{
    if (fileName.starts_with('/'))
        return fileName;
    const std::size_t slash = includingFile.rfind('/');
    const std::string_view directory = slash == std::string_view::npos ? "."
                                       : slash == 0                    ? "/"
                                                    : includingFile.substr(0, slash);
    return std::string(directory).append("/").append(fileName);
}

/// Sets on \a target the attributes of \a source that \a list names, separated by ';', in that
/// order. One that the source does not have is set without a value. Names are looked up through
/// indexes, however many there are.
void inheritAttributes(Run &run, const XMLElement &source, std::string_view list,
                       XMLElement *target)
{
    run.budget.spend(Price::IndexedName, source.attributes().size() + target->attributes().size());
    std::unordered_map<std::string_view, const char *, NameHash> values;
    for (const XMLAttribute &attribute : source.attributes())
        values.emplace(attribute.name, attribute.value);
    std::unordered_map<std::string_view, std::size_t, NameHash> present;
    for (std::size_t position = 0; position < target->attributes().size(); ++position)
        present.emplace(target->attributes()[position].name, position);
    forEachPiece(&run.budget, Price::InheritedName, list, ';', [&](std::string_view name) {
        const auto value = values.find(name);
        const char *inherited = value == values.end() ? nullptr : value->second;
        const auto [entry, isNew] = present.try_emplace(name, target->attributes().size());
        if (isNew)
            target->appendAttribute(XMLDocument::copyString(name.data(), name.size()), inherited);
        else
            target->attributes()[entry->second].value = inherited;
    });
}

void reportFailedLoad(Run &run, const std::string &path, bool hasRoot)
{
    const XMLPP2 &document = run.document;
    std::string message;
    if (hasRoot)
        message.append("error \"")
            .append(document.errorMessage)
            .append("\" in include file ")
            .append(path)
            .append(" line:")
            .append(std::to_string(document.errorLine));
    else
        message.append("error: include file '").append(path).append("' is empty");
    run.report(message);
}

/// The root element of the file, which belongs to the document but is not linked to it. Null
/// after an error was reported. No more is read than the document may still grow.
XMLElement *loadInclude(Run &run, const std::string &path, const XMLElement &includedBy)
{
    XMLPP2 &document = run.document;
    XMLNode *const root = document.root;
    const std::size_t bytesBefore = document.bytesUsed();
    const std::size_t limit = std::exchange(document.readLimit, run.budget.growthLeft());
    const bool ok = document.load(path);
    document.readLimit = limit;
    run.budget.spend(Price::Include, 1);
    run.budget.spend(Price::PathPart, static_cast<std::uint64_t>(std::ranges::count(path, '/')));
    run.budget.spend(Price::IncludedByte, document.bytesUsed() - bytesBefore);
    auto *const included = static_cast<XMLElement *>(document.root);
    document.root = root;
    document.fileLoaded(path, ok ? included : nullptr, &includedBy);
    if (ok && included)
        return included;
    if (document.passedReadLimit)
        run.stop(run.budget.growthMessage());
    else
        reportFailedLoad(run, path, included);
    return nullptr;
}

/// The file that \a element names. Only system macros are looked up in its name.
std::string includedPath(Run &run, const XMLElement &element, const Level &level)
{
    MapLookup systemMacros(&globalMacros.systemMacros);
    std::string fileName;
    run.budget.spend(
        Price::Nanosecond,
        globalMacros.expand(systemMacros, attributeText(element, "filename"), &fileName));
    return resolveFileName(fileName, level.fileName);
}

}  // namespace

Outcome handleInclude(Run &run, XMLElement &element, const Level &level)
{
    if (!element.hasAttribute("filename")) {
        run.report("missing filename in <include>");
        return Outcome::keep();
    }
    const std::string path = includedPath(run, element, level);
    if (level.includes >= run.limits.nestedIncludes) {
        run.stop(std::string("more than ")
                     .append(std::to_string(run.limits.nestedIncludes))
                     .append(" nested includes at ")
                     .append(path));
        return Outcome::keep();
    }
    XMLElement *const included = loadInclude(run, path, element);
    if (!included)
        return Outcome::keep();

    const char *const fileName = XMLDocument::copyString(path.data(), path.size());
    auto content =
        run.contentFor(element, {{fileName, path.size()}, level.expand, level.includes + 1});
    if (content->level.expand)
        run.expandAttributes(*included);
    if (const char *inherited = element.attribute("inherit_attributes"))
        inheritAttributes(run, element, inherited, included);

    const bool isWrapper =
        element.hasAttribute("no_root") || std::strcmp(included->name(), "envelope") == 0;
    // In the document's own root's place there is room for one element only.
    const auto action =
        isWrapper && &element != run.firstRoot ? Outcome::Action::Unwrap : Outcome::Action::Replace;
    return {action, included, std::move(content)};
}

}  // namespace directive

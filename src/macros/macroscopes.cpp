#include "macroscopes.h"

#include "latin1.h"
#include "macrolist.h"

#include <algorithm>
#include <iterator>
#include <utility>

MacroScopes::MacroScopes(MacroMap *outermostLevel) : outermost(*outermostLevel)
{
    for (auto entry = outermost.cbegin(); entry != outermost.cend(); ++entry) {
        if (isLatin1(entry.key()))
            macros[entry.key().toLatin1().toStdString()] = {
                .value = entry.value().toLatin1().toStdString(),
                .isDefined = true,
                .isWide = !isLatin1(entry.value()),
            };
    }
}

Lookup MacroScopes::findLatin1(std::string_view name, std::string_view *value)
{
    const auto found = macros.find(name);
    if (found == macros.end() || !found->second.isDefined)
        return Lookup::Missing;
    if (found->second.isWide)
        return Lookup::NotLatin1;
    *value = found->second.value;
    return Lookup::Found;
}

const QString *MacroScopes::find(const QString &name)
{
    if (const QString *value = MacroLookup::find(name))
        return value;
    // No level defines what Latin-1 cannot spell, so the map has it, if anything.
    const auto found = outermost.constFind(name);
    return found == outermost.cend() ? nullptr : &found.value();
}

void MacroScopes::set(std::string_view name, std::string_view value)
{
    auto entry = macros.find(name);
    if (entry == macros.end())
        entry = macros.emplace(name, Macro{}).first;
    Macro &macro = entry->second;
    if (depth == 0)
        outermost.insert(fromLatin1(name), fromLatin1(value));
    // Only the first change that a level makes has something to put back.
    if (macro.depth != depth)
        changes.push_back({&macro, macro});
    macro.value = value;
    macro.isDefined = true;
    macro.isWide = false;
    macro.depth = depth;
}

void MacroScopes::setList(std::string_view list)
{
    std::string withoutNewlines;
    if (list.find('\n') != std::string_view::npos) {
        std::copy_if(list.begin(), list.end(), std::back_inserter(withoutNewlines),
                     [](char c) { return c != '\n'; });
        list = withoutNewlines;
    }
    forEachListItem(list, [this](std::string_view item) {
        const std::size_t equals = std::min(item.find('='), item.size());
        if (!item.empty())
            set(item.substr(0, equals), item.substr(std::min(equals + 1, item.size())));
    });
}

void MacroScopes::leave(std::size_t changesBefore)
{
    for (; changes.size() > changesBefore; changes.pop_back())
        *changes.back().macro = std::move(changes.back().before);
    --depth;
}

#include "macroscopes.h"

#include "macrolist.h"

#include <utility>

MacroScopes::MacroScopes(MacroMap *outermostLevel) : outermost(*outermostLevel)
{
    for (const auto &[name, value] : outermost)
        macros[name] = {.value = value, .isDefined = true};
}

bool MacroScopes::find(std::string_view name, std::string_view *value)
{
    const auto found = macros.find(name);
    if (found == macros.end() || !found->second.isDefined)
        return false;
    *value = found->second.value;
    return true;
}

void MacroScopes::set(std::string_view name, std::string_view value)
{
    if (depth == 0)
        outermost.insert_or_assign(std::string(name), value);
    auto entry = macros.find(name);
    if (entry == macros.end())
        entry = macros.emplace(name, Macro{}).first;
    Macro &macro = entry->second;
    if (macro.depth != depth)
        changes.push_back({&macro, std::exchange(macro, {})});
    macro.value = value;
    macro.isDefined = true;
    macro.depth = depth;
}

void MacroScopes::setList(std::string_view list)
{
    std::string withoutNewlines;
    if (list.find('\n') != std::string_view::npos) {
        withoutNewlines = list;
        std::erase(withoutNewlines, '\n');
        list = withoutNewlines;
    }
    forEachListItem(list, [this](std::string_view item) {
        const auto [name, value] = nameAndValue(item);
        if (!item.empty())
            set(name, value);
    });
}

void MacroScopes::leave(std::size_t changesBefore)
{
    for (; changes.size() > changesBefore; changes.pop_back())
        *changes.back().macro = std::move(changes.back().before);
    --depth;
}

#include "macroscopes.h"

#include "macrolist.h"

#include <algorithm>
#include <cassert>

MacroScopes::MacroScopes(MacroMap *outermostLevel) : outermost(*outermostLevel), cells(128)
{
    for (const auto &[name, value] : outermost)
        define(name, value);
}

MacroScopes::Macro &MacroScopes::findOrAdd(std::string_view name)
{
    const NameKey key(name);
    if (Macro *found = cells[cellOf(key, name)])
        return *found;
    if (macros.size() * 4 == cells.size()) {
        cells.assign(cells.size() * 2, nullptr);
        for (Macro &macro : macros)
            cells[cellOf(macro.key, macro.name)] = &macro;
    }
    return *(cells[cellOf(key, name)] = &macros.emplace_back(Macro{key, std::string(name)}));
}

void MacroScopes::set(std::string_view name, std::string_view newValue)
{
    assert(newValue.data() < text.data() || newValue.data() > text.data() + text.size());
    if (depth == 0)
        outermost.insert_or_assign(std::string(name), newValue);
    define(name, newValue);
}

void MacroScopes::define(std::string_view name, std::string_view newValue)
{
    Macro &macro = findOrAdd(name);
    Value &value = macro.value;
    if (value.depth != depth) {
        changes.push_back({&macro, value});
        value = {.depth = depth};
    }
    if (newValue.size() > value.room) {
        value.start = text.size();
        value.room = std::max(newValue.size(), 2 * value.room);
        text.append(newValue).resize(value.start + value.room);
    } else {
        newValue.copy(text.data() + value.start, newValue.size());
    }
    value.length = newValue.size();
    value.isDefined = true;
}

std::uint64_t MacroScopes::setList(std::string_view list)
{
    constexpr std::uint64_t stepsPerItem = 20;
    std::uint64_t steps = list.size() * 7 / 10;
    std::string withoutNewlines;
    if (list.find('\n') != std::string_view::npos) {
        withoutNewlines = list;
        std::erase(withoutNewlines, '\n');
        list = withoutNewlines;
    }
    forEachListItem(list, [&](std::string_view item) {
        if (item.empty())
            return;
        const auto [name, value] = nameAndValue(item);
        set(name, value);
        steps += stepsPerItem;
    });
    return steps;
}

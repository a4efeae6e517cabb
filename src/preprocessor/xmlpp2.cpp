#include "xmlpp2.h"

#include "macrovalues.h"
#include "walk.h"

#include <algorithm>
#include <string_view>
#include <vector>

bool XMLPP2::preprocessFile(const std::string &fileName, const std::string &macroList, bool expand)
{
    const bool loaded = load(fileName);
    fileLoaded(fileName, loaded ? static_cast<XMLElement *>(root) : nullptr, nullptr);
    if (!loaded)
        return false;
    const CurrentPool current(this);
    MacroMap macros = macrosOf(macroList);
    processConditionals(root, fileName, macros, expand);
    return true;
}

MacroMap XMLPP2::macrosOf(std::string_view list)
{
    std::vector<std::string> items;
    while (!list.empty()) {
        const std::string_view item = list.substr(0, list.find(';'));
        if (!item.empty())
            items.emplace_back(item);
        list.remove_prefix(std::min(item.size() + 1, list.size()));
    }
    return MacroValues::parseMacroList(items);
}

void XMLPP2::processConditionals(XMLNode *node, const std::string &fileName, MacroMap &macros,
                                 bool expand)
{
    if (node)
        Walk(this, &macros).walk(node, {fileName, expand, 0});
}

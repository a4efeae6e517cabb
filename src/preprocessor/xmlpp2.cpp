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
    std::vector<std::string> items;
    for (std::string_view rest = macroList; !rest.empty();) {
        const std::string_view item = rest.substr(0, rest.find(';'));
        if (!item.empty())
            items.emplace_back(item);
        rest.remove_prefix(std::min(item.size() + 1, rest.size()));
    }
    MacroMap macros = MacroValues::parseMacroList(items);
    processConditionals(root, fileName, macros, expand);
    return true;
}

void XMLPP2::processConditionals(XMLNode *node, const std::string &fileName, MacroMap &macros,
                                 bool expand)
{
    if (node)
        Walk(this, &macros).walk(node, {fileName, expand, 0});
}

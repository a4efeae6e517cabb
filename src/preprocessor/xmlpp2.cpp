#include "xmlpp2.h"

#include "macrovalues.h"
#include "pieces.h"
#include "walk.h"

#include <string_view>
#include <vector>

bool XMLPP2::preprocessFile(const std::string &fileName, const std::string &macroList, bool expand)
{
    if (!load(fileName))
        return false;
    const CurrentPool current(this);
    std::vector<std::string> items;
    forEachPiece(macroList, ';', [&](std::string_view item) { items.emplace_back(item); });
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

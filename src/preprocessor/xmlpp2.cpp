#include "xmlpp2.h"

#include "macrovalues.h"
#include "walk.h"

bool XMLPP2::preprocessFile(const QString &fileName, const QString &macroList, bool expand)
{
    if (!load(fileName))
        return false;
    const CurrentPool current(this);
    MacroMap macros = MacroValues::parseMacroList(macroList.split(u';', Qt::SkipEmptyParts));
    processConditionals(root, fileName, macros, expand);
    return true;
}

void XMLPP2::processConditionals(XMLNode *node, const QString &fileName, MacroMap &macros,
                                 bool expand)
{
    if (node)
        Walk(this, &macros).run(node, {fileName, expand, 0});
}

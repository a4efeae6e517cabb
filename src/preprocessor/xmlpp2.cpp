#include "xmlpp2.h"

#include "macrovalues.h"
#include "walk.h"

bool XMLPP2::preprocessFile(const QString &fileName, const QString &macroList, bool expand)
{
    if (!load(fileName.toLatin1().toStdString()))
        return false;
    const CurrentPool current(this);
    std::vector<std::string> items;
    for (const QString &item : macroList.split(u';', Qt::SkipEmptyParts))
        items.push_back(item.toLatin1().toStdString());
    MacroMap macros = MacroValues::parseMacroList(items);
    processConditionals(root, fileName, macros, expand);
    return true;
}

void XMLPP2::processConditionals(XMLNode *node, const QString &fileName, MacroMap &macros,
                                 bool expand)
{
    if (node)
        Walk(this, &macros).run(node, {fileName, expand, 0});
}

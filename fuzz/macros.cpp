// Macro lists and expansion. The first line is a macro list, the rest the text to be expanded.

#include "check.h"
#include "macrovalues.h"

#include <algorithm>
#include <new>

using namespace Qt::StringLiterals;

namespace
{

std::string bytesOf(const QString &text)
{
    return text.isNull() ? "(null)" : '"' + text.toLatin1().toStdString() + '"';
}

/// Items that are escaped and joined are split into themselves, and they win over a base.
MacroMap checkList(const QString &list)
{
    QStringList items = MacroValues::splitMacroList(list, true);
    QStringList escaped = items;
    for (QString &item : escaped)
        item.replace(u'\\', u"\\\\"_s).replace(u';', u"\\;"_s);
    requireEqual(bytesOf(MacroValues::splitMacroList(escaped.join(u';'), true).join(u'\n')),
                 bytesOf(items.join(u'\n')));
    items.removeAll(QString());
    requireEqual(bytesOf(MacroValues::splitMacroList(list, false).join(u'\n')),
                 bytesOf(items.join(u'\n')));
    const MacroMap macros = MacroValues::parseMacroList(items);
    const MacroMap base{{u"a"_s, u"$(b)"_s}, {u"wide"_s, u"\u03b1$(a:$(a))"_s}};
    const MacroMap merged = MacroValues::mergeMacros(base, macros);
    requireEqual(MacroValues::mergeMacros(merged, macros) == merged ? "" : "lost", "");
    return merged;
}

/// Both widths expand alike.
void checkExpansion(const MacroMap &macros, const std::string &text, bool useSystemMacros)
{
    std::string narrow;
    const QString wide =
        globalMacros.expandMacros(macros, QString::fromLatin1(text), useSystemMacros);
    MapLookup lookup(&macros, useSystemMacros ? &globalMacros.systemMacros : nullptr);
    const bool hasText = globalMacros.expandLatin1(lookup, text, &narrow);
    requireEqual(bytesOf(wide), hasText ? '"' + narrow + '"' : "(null)");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::size_t lineEnd = std::min(input.find('\n'), size);
    const std::string text = input.substr(std::min(lineEnd + 1, size));
    const MacroMap macros = checkList(QString::fromLatin1(input.substr(0, lineEnd)));
    globalMacros.limits.passes = 40;
    globalMacros.limits.length = 1 << 14;
    try {
        checkExpansion(macros, text, false);
        // Between two expansions of $(Time) a second can end.
        checkExpansion(macros, text, text.find("Time") == std::string::npos);
    } catch (const std::bad_alloc &) {
        // An expansion that is too long ends so.
    }
    return 0;
}

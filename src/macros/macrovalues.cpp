#include "macrovalues.h"

MacroValues globalMacros;

MacroValues::MacroValues()
{
    static constexpr struct {
        const char *name;
        const char *value;
    } facts[] = {
        {"Date", ""},        {"DateYear", ""},
        {"DateMonth", ""},   {"DateDay", ""},
        {"Time", ""},        {"TimeHour", ""},
        {"TimeMinute", ""},  {"TimeSecond", ""},
        {"HostArch", "x86"}, {"HostOS", "macos"},
        {"Micro", "ARM"},    {"TargetID", "8"},
        {"HostEXE", ""},     {"HostDLL", ".so_macos_x86"},
    };
    for (const auto &fact : facts)
        setSystemMacro(QString::fromLatin1(fact.name), QString::fromLatin1(fact.value));
}

void MacroValues::setSystemMacro(const QString &name, const QString &value)
{
    systemMacros.insert(name, value);
}

QStringList MacroValues::splitMacroList(const QString &text, bool keepEmpty)
{
    QStringList items;
    QString item;
    const auto finishItem = [&] {
        if (keepEmpty || !item.isEmpty())
            items.append(item);
        item.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\' && i + 1 < text.size())
            item.append(text[++i]);
        else if (text[i] == u';')
            finishItem();
        else
            item.append(text[i]);
    }
    finishItem();
    return items;
}

MacroMap MacroValues::parseMacroList(const QStringList &items)
{
    MacroMap macros;
    for (const QString &item : items) {
        const qsizetype equals = item.indexOf(u'=');
        if (equals < 0)
            macros.insert(item, QStringLiteral(""));
        else
            macros.insert(item.first(equals), item.sliced(equals + 1));
    }
    return macros;
}

MacroMap MacroValues::mergeMacros(const MacroMap &base, const MacroMap &overrides)
{
    MacroMap merged = base;
    for (auto entry = overrides.cbegin(); entry != overrides.cend(); ++entry)
        merged.insert(entry.key(), entry.value());
    return merged;
}

#include "macrovalues.h"

#include <utility>

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
    qsizetype runStart = 0;  // of the characters that stand for themselves
    const auto takeRun = [&](qsizetype end) {
        item += QStringView(text).sliced(runStart, end - runStart);
    };
    const auto finishItem = [&] {
        if (keepEmpty || !item.isEmpty())
            items.append(std::exchange(item, QString()));
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\' && i + 1 < text.size()) {
            takeRun(i);
            runStart = ++i;
        } else if (text[i] == u';') {
            takeRun(i);
            finishItem();
            runStart = i + 1;
        }
    }
    takeRun(text.size());
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
    if (base.isEmpty())
        return overrides;
    MacroMap merged = base;
    for (auto entry = overrides.cbegin(); entry != overrides.cend(); ++entry)
        merged.insert(entry.key(), entry.value());
    return merged;
}

#include "macrovalues.h"

#include "macrolist.h"

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
    const std::u16string_view view(reinterpret_cast<const char16_t *>(text.constData()),
                                   static_cast<std::size_t>(text.size()));
    forEachListItem(view, [&](std::u16string_view item) {
        if (keepEmpty || !item.empty())
            items.append(QStringView(item).toString());
    });
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

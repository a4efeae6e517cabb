#include "macrovalues.h"

#include "macrolist.h"

#include <ctime>

namespace
{

/// The macros whose values are computed, and what makes them, as strftime() takes it.
constexpr std::pair<std::string_view, const char *> clockMacros[] = {
    {"Date", "%e %B %Y"}, {"DateYear", "%Y"}, {"DateMonth", "%m"},  {"DateDay", "%d"},
    {"Time", "%H:%M:%S"}, {"TimeHour", "%H"}, {"TimeMinute", "%M"}, {"TimeSecond", "%S"},
};

/// The local time. Asking what it is takes twenty times as long as asking which second it is, so
/// it is asked once a second.
const std::tm &localNow()
{
    static std::time_t brokenDown = -1;
    static std::tm local;
    const std::time_t now = std::time(nullptr);
    if (now != brokenDown && localtime_r(&now, &local))
        brokenDown = now;
    return local;
}

}  // namespace

MacroValues globalMacros;

MacroValues::MacroValues()
    : systemMacros{{"HostArch", "x86"}, {"HostOS", "macos"}, {"Micro", "ARM"},
                   {"TargetID", "8"},   {"HostEXE", ""},     {"HostDLL", ".so_macos_x86"}}
{
    for (const auto &[name, format] : clockMacros)
        systemMacros.emplace(name, "");
}

bool MacroValues::readClock(std::string_view name, std::string *value)
{
    for (const auto &[each, format] : clockMacros) {
        if (each == name) {
            char text[64];
            const std::size_t length = std::strftime(text, sizeof text, format, &localNow());
            const std::size_t padding = text[0] == ' ';  // of a day of one digit
            value->assign(text + padding, length - padding);
            return true;
        }
    }
    return false;
}

std::vector<std::string> MacroValues::splitMacroList(std::string_view text, bool keepEmpty)
{
    std::vector<std::string> items;
    forEachListItem(text, [&](std::string_view item) {
        if (keepEmpty || !item.empty())
            items.emplace_back(item);
    });
    return items;
}

MacroMap MacroValues::parseMacroList(const std::vector<std::string> &items)
{
    MacroMap macros;
    for (const std::string &item : items) {
        const auto [name, value] = nameAndValue(item);
        macros.insert_or_assign(std::string(name), value);
    }
    return macros;
}

MacroMap MacroValues::mergeMacros(const MacroMap &base, const MacroMap &overrides)
{
    MacroMap merged = overrides;
    merged.insert(base.begin(), base.end());  // what is there already stays
    return merged;
}

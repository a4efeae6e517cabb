#include "macrovalues.h"

#include "macrolist.h"

MacroValues globalMacros;

MacroValues::MacroValues()
    : systemMacros{
          {"Date", ""},        {"DateYear", ""},
          {"DateMonth", ""},   {"DateDay", ""},
          {"Time", ""},        {"TimeHour", ""},
          {"TimeMinute", ""},  {"TimeSecond", ""},
          {"HostArch", "x86"}, {"HostOS", "macos"},
          {"Micro", "ARM"},    {"TargetID", "8"},
          {"HostEXE", ""},     {"HostDLL", ".so_macos_x86"},
      }
{
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

// Macro lists and expansion. The first line is a macro list, the rest the text to be expanded.

#include "check.h"
#include "macroscopes.h"
#include "macrovalues.h"

#include <algorithm>
#include <new>

namespace
{

/// Items that are escaped and joined are split into themselves.
void checkList(const std::string &list)
{
    const std::vector<std::string> items = MacroValues::splitMacroList(list, true);
    std::string again;
    for (const std::string &item : items) {
        again += &item == items.data() ? "" : ";";
        for (const char c : item)
            again.append(c == '\\' || c == ';' ? "\\" : "").push_back(c);
    }
    requireEqual(MacroValues::splitMacroList(again, true) == items ? "" : again, "");
}

/// A map and a level that define the same expand alike.
void checkExpansion(const std::string &list, const std::string &text)
{
    const MacroMap macros = MacroValues::parseMacroList(MacroValues::splitMacroList(list, false));
    MacroMap outermost{{"a", "$(b)"}};
    MacroScopes scopes(&outermost);
    const MacroScopes::Scope level(&scopes);
    scopes.setList(list);
    std::string expansion;
    globalMacros.expand(scopes, text, &expansion);
    requireEqual(
        globalMacros.expandMacros(MacroValues::mergeMacros(outermost, macros), text, false),
        expansion);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::size_t lineEnd = std::min(input.find('\n'), size);
    const std::string list = input.substr(0, lineEnd);
    globalMacros.limits.passes = 40;
    globalMacros.limits.length = 1 << 14;
    checkList(list);
    try {
        // Between two expansions of $(Time) a second can end.
        if (input.find("Time") == std::string::npos)
            checkExpansion(list, input.substr(std::min(lineEnd + 1, size)));
    } catch (const std::bad_alloc &) {
        // An expansion that is too long ends so.
    }
    return 0;
}

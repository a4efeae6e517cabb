#include "directive.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <iterator>

namespace directive
{

Handler handleIf, handleIfex, handleIfdef, handleSwitch;
Handler handleInclude;
Handler handleDefine;
Handler handleFor, handleForeach;
Handler handleXmldef, handleXmlput;

namespace
{

/// The first eight characters of a name as a number.
constexpr std::uint64_t asNumber(const char *name)
{
    std::uint64_t number = 0;
    for (int length = 0; length < 8 && *name != '\0'; ++length)
        number = number << 8 | static_cast<unsigned char>(*name++);
    return number;
}

struct Row {
    const char *name;
    Handler *handler;
    std::uint64_t number = asNumber(name);
};

constexpr Row table[] = {
    {"if", handleIf},           {"ifnot", handleIf},      {"ifex", handleIfex},
    {"ifdef", handleIfdef},     {"ifndef", handleIfdef},  {"switch", handleSwitch},
    {"include", handleInclude}, {"define", handleDefine}, {"for", handleFor},
    {"xmldef", handleXmldef},   {"xmlput", handleXmlput}, {"foreach", handleForeach},
};

// A number stands for a whole name only where it has room for one character more.
static_assert(std::ranges::all_of(table, [](const Row &row) { return row.number >> 56 == 0; }));

/// By first character: whether a directive begins with it. Most elements are known to be none
/// without a search.
constexpr auto beginsDirective = [] {
    std::array<bool, 256> all{};
    for (const Row &row : table)
        all[static_cast<unsigned char>(*row.name)] = true;
    return all;
}();

}  // namespace

Handler *findDirective(const char *name)
{
    assert(name);
    if (!beginsDirective[static_cast<unsigned char>(*name)])
        return nullptr;
    const auto *const found = std::ranges::find(table, asNumber(name), &Row::number);
    return found == std::end(table) ? nullptr : found->handler;
}

}  // namespace directive

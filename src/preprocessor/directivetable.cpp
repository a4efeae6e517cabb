#include "directive.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace directive
{

Handler handleIf, handleIfnot, handleIfex, handleIfdef, handleIfndef, handleSwitch;
Handler handleInclude;
Handler handleDefine;
Handler handleFor, handleForeach;
Handler handleXmldef, handleXmlput;

namespace
{

struct Row {
    std::string_view name;
    Handler *handler;
};

constexpr Row table[] = {
    {"if", handleIf},           {"ifnot", handleIfnot},   {"ifex", handleIfex},
    {"ifdef", handleIfdef},     {"ifndef", handleIfndef}, {"switch", handleSwitch},
    {"include", handleInclude}, {"define", handleDefine}, {"for", handleFor},
    {"xmldef", handleXmldef},   {"xmlput", handleXmlput}, {"foreach", handleForeach},
};

/// The first eight characters of a name as a number.
constexpr std::uint64_t asNumber(const char *name)
{
    std::uint64_t number = 0;
    for (int length = 0; length < 8 && *name != '\0'; ++length)
        number = number << 8 | static_cast<unsigned char>(*name++);
    return number;
}

// A number stands for a whole name only if there is room for its end.
static_assert(std::ranges::all_of(table, [](const Row &row) { return row.name.size() < 8; }));

constexpr auto numbers = [] {
    std::array<std::uint64_t, std::size(table)> all{};
    std::ranges::transform(table, all.begin(),
                           [](const Row &row) { return asNumber(row.name.data()); });
    return all;
}();

/// By first character: whether a directive begins with it. Most elements are known to be none
/// without a search.
constexpr auto beginsDirective = [] {
    std::array<bool, 256> all{};
    for (const Row &row : table)
        all[static_cast<unsigned char>(row.name.front())] = true;
    return all;
}();

}  // namespace

Handler *findDirective(const char *name)
{
    if (!beginsDirective[static_cast<unsigned char>(*name)])
        return nullptr;
    const auto *const found = std::ranges::find(numbers, asNumber(name));
    return found == numbers.end() ? nullptr : table[found - numbers.begin()].handler;
}

}  // namespace directive

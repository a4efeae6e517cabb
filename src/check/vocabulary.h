#pragma once

#include "macrovalues.h"
#include "run.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// What the language calls things, for those who look at a document without executing it.

/// A directive, or a branch of <switch>, and the attributes that it knows.
struct KnownAttributes {
    std::string_view directive;
    std::string_view attributes;  ///< separated by blanks; "*" where every attribute is a macro
};

constexpr KnownAttributes knownAttributes[] = {
    {"if", "*"},
    {"ifnot", "*"},
    {"ifex", "expression"},
    {"ifdef", "name"},
    {"ifndef", "name"},
    {"switch", "name"},
    {"case", "value"},
    {"default", ""},
    {"define", "name value expression hex_expression"},
    {"for", "index start end incr mul add sub"},
    {"foreach", "*"},
    {"include", "filename macros inherit_attributes no_root expand_macros"},
    {"xmldef", "name"},
    {"xmlput", "name macros expand_macros"},
};

inline bool isNamed(const XMLElement &element, std::initializer_list<std::string_view> names)
{
    return std::ranges::find(names, element.name()) != names.end();
}

inline bool isBranch(std::string_view name)
{
    return name == "case" || name == "default";
}

/// The macro that a condition asks for; empty for what asks for none.
inline std::string askedMacro(const XMLElement &element)
{
    if (isNamed(element, {"if", "ifnot"}) && !element.attributes().empty())
        return element.attributes().front().name;
    const bool asksByName = isNamed(element, {"ifdef", "ifndef", "switch"});
    return std::string(asksByName ? directive::attributeText(element, "name") : "");
}

/// The macros of a loop's rounds; none for what is no loop.
inline std::vector<std::string> macrosOfLoop(const XMLElement &element)
{
    std::vector<std::string> macros;
    if (isNamed(element, {"for"})) {
        for (const char *suffix : {"", "_alpha", "_hex", "_ap", "_ap_hex"})
            macros.push_back(std::string(directive::attributeText(element, "index")) + suffix);
    } else if (isNamed(element, {"foreach"})) {
        for (const XMLAttribute &attribute : element.attributes())
            macros.emplace_back(attribute.name);
    }
    return macros;
}

/// The entries of the macro list that an element brings; none where it brings no macros.
inline std::vector<std::string> macroItems(const XMLElement &element)
{
    if (!isNamed(element, {"include", "xmlput"}))
        return {};
    std::string list(directive::attributeText(element, "macros"));
    std::erase(list, '\n');
    return MacroValues::splitMacroList(list, false);
}

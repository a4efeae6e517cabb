#pragma once

#include "macrolist.h"
#include "macrovalues.h"
#include "run.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// What the language calls things, for those who look at a document without executing it.

using directive::attributeText;
using directive::textOf;

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

/// The macro that a condition asks for; empty for what asks for none.
inline std::string_view askedMacro(const XMLElement &element)
{
    if (isNamed(element, {"if", "ifnot"}) && !element.attributes().empty())
        return element.attributes().front().name;
    const bool asksByName = isNamed(element, {"ifdef", "ifndef", "switch"});
    return asksByName ? attributeText(element, "name") : "";
}

/// The entries of the macro list that an element brings; none where it brings no macros.
inline std::vector<std::string> macroItems(const XMLElement &element)
{
    std::string list(attributeText(element, "macros"));
    std::erase(list, '\n');
    return MacroValues::splitMacroList(isNamed(element, {"include", "xmlput"}) ? list : "", false);
}

/// The macros that an element defines, for the rounds of a loop as well.
inline std::vector<std::string> definedMacros(const XMLElement &element)
{
    std::vector<std::string> macros;
    if (isNamed(element, {"define"}))
        macros.emplace_back(attributeText(element, "name"));
    if (isNamed(element, {"for"}))
        macros.emplace_back(attributeText(element, "index"));
    if (isNamed(element, {"foreach"})) {
        for (const XMLAttribute &attribute : element.attributes())
            macros.emplace_back(attribute.name);
    }
    for (const std::string &item : macroItems(element))
        macros.emplace_back(nameAndValue(item).first);
    return macros;
}

/// A reference to a macro as it begins, at each "$(" of a text.
struct Reference {
    std::string_view macro;
    char end;  ///< ')', the ':' of a default, '$' or '(' in a name, NUL where the text ends
};

inline std::vector<Reference> referencesIn(std::string_view text)
{
    std::vector<Reference> references;
    for (std::size_t at = 0; (at = text.find("$(", at)) != std::string_view::npos;) {
        at += 2;
        const std::size_t end = std::min(text.find_first_of(":)$(", at), text.size());
        references.push_back({text.substr(at, end - at), end == text.size() ? '\0' : text[end]});
    }
    return references;
}

inline bool holds(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

inline bool hasBlankAround(std::string_view name)
{
    return name.starts_with(' ') || name.ends_with(' ');
}

/// Whether one character more, less or another one, or another order, make \a a of \a b.
inline bool isOneEdit(std::string_view a, std::string_view b)
{
    const auto first = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
    const std::string_view x = a.substr(static_cast<std::size_t>(first));
    const std::string_view y = b.substr(static_cast<std::size_t>(first));
    const auto rest = [](std::string_view text) { return text.substr(text.empty() ? 0 : 1); };
    return rest(x) == y || x == rest(y) || rest(x) == rest(y) ||
           (a.size() == b.size() && std::ranges::is_permutation(a, b));
}

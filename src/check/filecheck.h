#pragma once

#include "messages.h"
#include "vocabulary.h"
#include "xmlnode.h"

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Says what files show as they stand, their text included, and notes what they say of macros.
class FileCheck
{
public:
    explicit FileCheck(Messages *receiver) : messages(*receiver) {}

    /// Checks the tree of a file, whose line 0 is at \a start. Takes no stack for its depth.
    void check(const XMLNode *root, const Place &start, bool hasLatin1)
    {
        isLatin1 = hasLatin1;
        for (const XMLNode *node = root; node;) {
            place = {start.file, start.line + node->line};
            if (node->kind() == XMLNode::Kind::Element)
                enter(static_cast<const XMLElement &>(*node));
            else if (node->kind() == XMLNode::Kind::Data)
                checkText(static_cast<const XMLText *>(node)->data());
            else if (node->kind() == XMLNode::Kind::CDATASection)
                checkSection(static_cast<const XMLText *>(node)->data());
            const XMLNode *next = node->firstChild;
            for (; node && !next; node = node->parent) {
                if (node->kind() == XMLNode::Kind::Element)
                    leave(static_cast<const XMLElement &>(*node));
                next = node->nextSibling;
            }
            node = next;
        }
    }

    std::set<std::string, std::less<>> defined;             ///< but for the macros of loops
    std::unordered_map<std::string, std::size_t> mentions;  ///< and the last element that has one
    bool areOpen = false;  ///< whether there can be mentions that are not seen

private:
    /// A <define> on a level that is not read to its end yet.
    struct Define {
        const XMLNode *level;
        std::string macro;
        Place place;
        std::size_t number;  ///< of the element
    };

    void enter(const XMLElement &element)
    {
        ++elements;
        const auto *const parent = static_cast<const XMLElement *>(element.parent);
        isInSwitch = parent && isNamed(*parent, {"switch"});
        openSwitches += isNamed(element, {"switch"});
        checkName(element);
        const bool hasLists = isNamed(element, {"if", "ifnot", "case", "foreach"});
        for (const XMLAttribute &attribute : element.attributes())
            checkValue(textOf(attribute), hasLists);
        checkBranch(element);
        checkMacroList(element);
        checkAsked(element);
        noteDefinitions(element);
    }

    void leave(const XMLElement &element)
    {
        openSwitches -= isNamed(element, {"switch"});
        if (isNamed(element, {"for", "foreach"})) {
            for (const std::string &macro : definedMacros(element))
                loopMacros.erase(loopMacros.find(macro));
        }
        for (; !defines.empty() && defines.back().level == &element; defines.pop_back()) {
            const auto &[level, macro, at, number] = defines.back();
            if (mentions[macro] <= number)
                messages.warn(at, "scope",
                              "nothing behind it on its level uses " + inQuotes(macro));
        }
    }

    /// A processing instruction is read as text too, and goes as a comment does.
    void checkText(std::string_view text)
    {
        const std::size_t first = text.find_first_not_of(" \t\n\v\f\r");
        if (first == std::string_view::npos || holds(text, "?>"))
            return;
        // Its line is that of its first byte, which counts if it is a newline.
        const auto newlines =
            std::ranges::count(text.substr(0, first), '\n') - text.starts_with('\n');
        place.line += static_cast<int>(newlines);
        warn("text", "the text " + inQuotes(text.substr(first, text.find('\n', first) - first)) +
                         " is dropped");
    }

    void checkSection(std::string_view text)
    {
        for (const auto &[macro, end] : referencesIn(text)) {
            if (end == ')' && defined.contains(macro))
                warn("reference", "a CDATA section keeps the reference to " + inQuotes(macro));
        }
    }

    void checkName(const XMLElement &element)
    {
        const std::string_view name = element.name();
        for (const auto &[directive, attributes] : knownAttributes) {
            if (name == directive)
                return checkAttributeNames(element, attributes);
        }
        if (isNamed(element, {"else", "elif", "elseif", "unless"}))
            warn("directive", inQuotes(name) + " is no directive");
        for (const auto &[directive, attributes] : knownAttributes) {
            // <includes>, <defined> and <base> are words like any other.
            const bool isWord =
                name.starts_with(directive) && (name.ends_with('s') || name.ends_with('d'));
            if (directive.size() >= 4 && isOneEdit(name, directive) && !isWord &&
                (isInSwitch || directive != "case"))
                warn("directive",
                     inQuotes(name) + " is no directive: is it " + inQuotes(directive) + "?");
        }
    }

    void checkAttributeNames(const XMLElement &element, std::string_view known)
    {
        const std::string_view inherited = attributeText(element, "inherit_attributes");
        if (holds(inherited, ","))
            warn("attribute", "the names in inherit_attributes are separated by ';'");
        const bool isBranch = isNamed(element, {"case", "default"});
        if (known == "*" || holds(inherited, ",") || holds(inherited, "$") ||
            (isBranch && !isInSwitch))
            return;
        const std::vector<std::string> items = MacroValues::splitMacroList(inherited, false);
        const std::set<std::string_view> others(items.begin(), items.end());
        const std::string all = std::string(" ").append(known).append(" ");
        for (const XMLAttribute &each : element.attributes()) {
            if (!holds(all, std::string(" ") + each.name + " ") && !others.contains(each.name))
                warn("attribute",
                     inQuotes(element.name()) + " knows no attribute " + inQuotes(each.name));
        }
    }

    void checkBranch(const XMLElement &element)
    {
        const bool isCase = isNamed(element, {"case"});
        const std::string_view value = attributeText(element, "value");
        if (!isInSwitch && (isCase || (openSwitches > 0 && isNamed(element, {"default"}))))
            warn("case", inQuotes(element.name()) + " is no child of a <switch>");
        else if (isCase && loopMacros.empty() && holds(value, "$("))
            warn("case", "the value of a <case> is not expanded: " + inQuotes(value));
    }

    void checkValue(std::string_view value, bool isList)
    {
        if (!isLatin1 && std::ranges::any_of(value, [](unsigned char c) { return c > 0x7E; }))
            warn("encoding",
                 "a byte above 0x7E becomes a character of its own in " + inQuotes(value));
        if (isList && (holds(value, ", ") || holds(value, " ,") || holds(value, ",\n")))
            warn("blank", "the blank beside a comma is part of the value in " + inQuotes(value));
        for (const auto &[macro, end] : referencesIn(value)) {
            mention(macro, macro.empty() || (end != ')' && end != ':'));
            if (end == '\0')
                warn("reference", "a reference in " + inQuotes(value) + " is not closed");
            const bool isFromOutside = !loopMacros.contains(macro) && defined.contains(macro);
            if (end == ':' && !loopMacros.empty() && isFromOutside)
                warn("loop", "in a loop the default of " + inQuotes(macro) + " counts at once");
        }
    }

    /// Computed names can be those of all macros.
    void mention(std::string_view macro, bool isComputed)
    {
        mentions[std::string(macro)] = elements;
        if (isComputed)
            defines.clear();
        areOpen = areOpen || isComputed;
    }

    void checkMacroList(const XMLElement &element)
    {
        for (const std::string &item : macroItems(element)) {
            if (item.find_first_not_of(' ') == std::string::npos)
                continue;
            // An entry that a reference brings is known in the run only.
            if (item.find_first_of("=$") == std::string::npos)
                warn("list", inQuotes(item) + " in a macro list has no '='");
            if (hasBlankAround(nameAndValue(item).first))
                warn("list", "the blanks are part of the name in " + inQuotes(item));
        }
    }

    void checkAsked(const XMLElement &element)
    {
        const std::string_view macro = askedMacro(element);
        if (!macro.empty())
            mention(macro, holds(macro, "$"));
        if (loopMacros.contains(macro) && !defined.contains(macro))
            warn("loop", inQuotes(element.name()) + " does not know the loop's " + inQuotes(macro) +
                             ": define it in the loop");
    }

    void noteDefinitions(const XMLElement &element)
    {
        if (isNamed(element, {"include", "xmlput"}))
            defines.clear();
        const bool isLoop = isNamed(element, {"for", "foreach"});
        for (const std::string &macro : definedMacros(element)) {
            if (isLoop)
                loopMacros.insert(macro);
            else
                defined.insert(macro);
            // What a loop defines is there in its next round, so that nothing need follow it.
            if (isNamed(element, {"define"}) && loopMacros.empty() && !macro.empty() &&
                !holds(macro, "$"))
                defines.push_back({element.parent, macro, place, elements});
        }
    }

    void warn(const char *category, const std::string &text)
    {
        messages.warn(place, category, text);
    }

    Messages &messages;
    Place place = {};  ///< of the node that is checked
    bool isLatin1 = false;
    bool isInSwitch = false;   ///< whether the element is the child of one
    std::size_t elements = 0;  ///< that were read, of all files
    int openSwitches = 0;      ///< with the element in them
    std::multiset<std::string, std::less<>> loopMacros;  ///< of open loops
    std::vector<Define> defines;
};

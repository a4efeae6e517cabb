#include "filecheck.h"

#include "characterclass.h"
#include "macrolist.h"
#include "macroreferences.h"
#include "vocabulary.h"

#include <iterator>
#include <map>

namespace
{

using directive::attributeText;
using directive::textOf;

bool isSpace(char c)
{
    return CharacterClass::is(CharacterClass::Space, c);
}

/// Whether one character more, less or another one, or two that change places, make \a a of \a b.
bool isOneEdit(std::string_view a, std::string_view b)
{
    while (!a.empty() && !b.empty() && a.front() == b.front()) {
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    while (!a.empty() && !b.empty() && a.back() == b.back()) {
        a.remove_suffix(1);
        b.remove_suffix(1);
    }
    const bool isSwap = a.size() == 2 && b.size() == 2 && a[0] == b[1] && a[1] == b[0];
    return isSwap || (a.size() <= 1 && b.size() <= 1);
}

class FileCheck
{
public:
    FileCheck(std::size_t number, bool hasLatin1, Names *target, Messages *receiver)
        : isLatin1(hasLatin1),
          names(*target),
          messages(*receiver),
          place{number}
    {
    }

    /// Checks the tree of \a root. Takes no stack for it, however deep it is.
    void checkTree(const XMLNode *root)
    {
        for (const XMLNode *node = root; node;) {
            enter(*node);
            const XMLNode *next = node->firstChild;
            for (; node && !next; node = node->parent) {
                leave(*node);
                next = node->nextSibling;
            }
            node = next;
        }
    }

private:
    /// A <define> on a level that is not read to its end yet.
    struct Definition {
        const XMLNode *level;
        std::string macro;
        Place place;
    };

    void enter(const XMLNode &node)
    {
        if (node.kind() == XMLNode::Kind::Data)
            checkText(static_cast<const XMLText &>(node));
        else if (node.kind() == XMLNode::Kind::CDATASection)
            checkSection(static_cast<const XMLText &>(node));
        else if (node.kind() == XMLNode::Kind::Element)
            enterElement(static_cast<const XMLElement &>(node));
    }

    void enterElement(const XMLElement &element)
    {
        place.line = element.line + 1;
        place.element = ++names.elements - elementsBefore;
        isInSwitch = !switches.empty() && element.parent == switches.back();
        checkName(element);
        checkBranch(element);
        for (const XMLAttribute &attribute : element.attributes())
            checkValue(attribute);
        checkAlternatives(element);
        checkMacroList(element);
        checkAsked(element);
        noteDefinition(element);
        for (const std::string &macro : macrosOfLoop(element))
            loopMacros.emplace(macro, names.elements);
        if (isNamed(element, {"switch"}))
            switches.push_back(&element);
    }

    void leave(const XMLNode &node)
    {
        if (node.kind() != XMLNode::Kind::Element)
            return;
        const auto &element = static_cast<const XMLElement &>(node);
        for (const std::string &macro : macrosOfLoop(element))
            loopMacros.erase(std::prev(loopMacros.upper_bound(macro)));
        if (isNamed(element, {"switch"}))
            switches.pop_back();
        for (; !definitions.empty() && definitions.back().level == &node; definitions.pop_back()) {
            const auto &[level, macro, at] = definitions.back();
            if (std::max(names.mentions[macro], names.lastOpen) <= elementsBefore + at.element)
                messages.warn(at, "scope",
                              "nothing behind it on its level uses " + inQuotes(macro));
        }
    }

    /// What a processing instruction holds is read as text, and goes as a comment does.
    void checkText(const XMLText &text)
    {
        const std::string_view data = text.data();
        const std::size_t instruction = data.find("?>");
        const std::size_t start = data.find_first_not_of(
            " \t\n\v\f", instruction == std::string_view::npos ? 0 : instruction + 2);
        if (start == std::string_view::npos)
            return;
        // Its line is that of its first byte, which counts if it is a newline.
        const auto newlines =
            std::ranges::count(data.substr(0, start), '\n') - data.starts_with('\n');
        const std::string_view shown = data.substr(start, data.find('\n', start) - start);
        messages.warn({place.file, text.line + 1 + static_cast<int>(newlines)}, "text",
                      "the text " + inQuotes(shown) + " is dropped");
    }

    void checkSection(const XMLText &section)
    {
        const Place at = {place.file, section.line + 1};
        forEachReference(section.data(), [&](const MacroReference &reference) {
            names.doubts.push_back({std::string(reference.name), at, "reference",
                                    inQuotes(reference.text) + " stays in a CDATA section"});
        });
    }

    void checkName(const XMLElement &element)
    {
        const std::string_view name = element.name();
        const auto *const known =
            std::ranges::find(knownAttributes, name, &KnownAttributes::directive);
        if (known != std::end(knownAttributes)) {
            if (known->attributes != "*" && (!isBranch(name) || isInSwitch))
                checkAttributeNames(element, *known);
            return;
        }
        if (isNamed(element, {"else", "elif", "elseif", "unless"}))
            warn("directive", inTag(name) + " is no directive");
        for (const auto &[directive, attributes] : knownAttributes) {
            // <includes> and <defined> are words like any other.
            const bool isWord =
                name.starts_with(directive) && (name.back() == 's' || name.back() == 'd');
            if (directive.size() >= 4 && isOneEdit(name, directive) && !isWord &&
                (!isBranch(directive) || isInSwitch))
                warn("directive",
                     inTag(name) + " is no directive: is it " + inTag(directive) + "?");
        }
    }

    void checkAttributeNames(const XMLElement &element, const KnownAttributes &known)
    {
        std::string all = std::string(" ").append(known.attributes).append(" ");
        if (known.directive == "include")
            all.append(attributeText(element, "inherit_attributes")).append(" ");
        if (all.find(',') != std::string::npos)
            warn("attribute", "the names in inherit_attributes are separated by ';'");
        std::ranges::replace_if(
            all, [](char c) { return c == ';' || c == ','; }, ' ');
        for (const XMLAttribute &attribute : element.attributes()) {
            const std::string name = std::string(" ").append(attribute.name).append(" ");
            if (all.find(name) == std::string::npos && all.find('$') == std::string::npos)
                warn("attribute",
                     inTag(known.directive) + " knows no attribute " + inQuotes(attribute.name));
        }
    }

    void checkBranch(const XMLElement &element)
    {
        const std::string_view name = element.name();
        if (isInSwitch)
            forEachReference(attributeText(element, "value"), [&](const MacroReference &reference) {
                if (name == "case" && !loopMacros.contains(std::string(reference.name)))
                    warn("case", inQuotes(reference.text) + " in a <case> is not expanded");
            });
        else if (isBranch(name) && !switches.empty())
            warn("case", inTag(name) + " is no child of its <switch>");
        else if (name == "case")
            warn("case", "<case> outside a <switch>");
    }

    void checkValue(const XMLAttribute &attribute)
    {
        const std::string_view value = textOf(attribute);
        if (!forEachReference(value, [&](const MacroReference &each) { checkReference(each); })) {
            warn("reference", "a reference in " + inQuotes(value) + " is not closed");
            names.areOpen = true;
        }
        const auto isForeign = [](char c) { return static_cast<unsigned char>(c) > 0x7E; };
        if (!isLatin1 && std::ranges::any_of(value, isForeign))
            warn("encoding", "a byte above 0x7E in " + inQuotes(attribute.name) +
                                 " is written as a character of its own");
    }

    void checkReference(const MacroReference &reference)
    {
        const std::string macro(reference.name);
        names.mentions[macro] = names.elements;
        if (reference.isComputed()) {
            names.lastOpen = names.elements;
            names.areOpen = true;
        } else if (reference.hasDefault && !loopMacros.empty() && !loopMacros.contains(macro)) {
            names.doubts.push_back(
                {macro, place, "loop",
                 "in a loop the default of " + inQuotes(macro) + " counts at once"});
        }
    }

    void checkAlternatives(const XMLElement &element)
    {
        if (!isNamed(element, {"if", "ifnot", "foreach"}) &&
            !(isInSwitch && isNamed(element, {"case"})))
            return;
        for (const XMLAttribute &attribute : element.attributes()) {
            const std::string_view list = textOf(attribute);
            std::size_t i = 1;
            while (i < list.size() && !(list[i] == ',' && isSpace(list[i - 1])) &&
                   !(list[i - 1] == ',' && isSpace(list[i])))
                ++i;
            if (i < list.size())
                warn("blank", "the blank beside a comma is part of the value in " + inQuotes(list));
        }
    }

    /// An entry that a reference brings is known in the run only.
    void checkMacroList(const XMLElement &element)
    {
        if (isNamed(element, {"include", "xmlput"}))
            names.lastOpen = names.elements;
        for (const std::string &item : macroItems(element)) {
            const std::string_view name = nameAndValue(item).first;
            if (std::ranges::all_of(item, isSpace) || name.find('$') != std::string_view::npos)
                continue;
            if (name.size() == item.size())
                warn("list", inQuotes(item) + " in a macro list has no '='");
            else if (hasBlankAround(name))
                warn("list", "the blanks are part of the name in " + inQuotes(item));
        }
    }

    void checkAsked(const XMLElement &element)
    {
        const std::string macro = askedMacro(element);
        if (macro.empty())
            return;
        names.mentions[macro] = names.elements;
        if (macro.find('$') != std::string::npos)
            names.lastOpen = names.elements;
        const auto behind = loopMacros.upper_bound(macro);
        if (loopMacros.contains(macro) && lastDefinitions[macro] < std::prev(behind)->second)
            warn("loop", inTag(element.name()) + " does not know the loop's " + inQuotes(macro) +
                             ": define it in the loop");
    }

    /// What a loop defines is there in its next round, so that nothing need follow it.
    void noteDefinition(const XMLElement &element)
    {
        if (!isNamed(element, {"define"}))
            return;
        const std::string macro(attributeText(element, "name"));
        lastDefinitions[macro] = names.elements;
        if (loopMacros.empty() && element.parent && macro.find('$') == std::string::npos)
            definitions.push_back({element.parent, macro, place});
    }

    void warn(const char *category, const std::string &text)
    {
        messages.warn(place, category, text);
    }

    const bool isLatin1;
    Names &names;
    const std::size_t elementsBefore = names.elements;  ///< those of other files
    Messages &messages;
    Place place;                                         ///< of the element that is checked
    bool isInSwitch = false;                             ///< whether that is the child of one
    std::vector<const XMLElement *> switches;            ///< that are open
    std::multimap<std::string, std::size_t> loopMacros;  ///< of open loops, and the loop's number
    std::vector<Definition> definitions;
    std::unordered_map<std::string, std::size_t> lastDefinitions;  ///< numbers of the elements
};

}  // namespace

bool hasBlankAround(std::string_view name)
{
    return !name.empty() && (isSpace(name.front()) || isSpace(name.back()));
}

void checkFile(const XMLNode *root, std::size_t number, bool isLatin1, Names *names,
               Messages *messages)
{
    FileCheck(number, isLatin1, names, messages).checkTree(root);
}

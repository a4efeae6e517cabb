#include "hexadecimal.h"
#include "walk.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// The rounds of a loop, and the macros that the copies of its body are expanded with in each.
class LoopRounds : public MacroLookup
{
public:
    /// Goes on to the next round; false when there is none.
    virtual bool advance() = 0;
};

/// <for>: a counter that wraps at 2^32, and what is derived from it.
class CountedRounds : public LoopRounds
{
public:
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    std::uint32_t step = 0;
    std::uint32_t factor = 1;
    std::uint32_t offset = 0;

    /// The number of rounds, \a most + 1 if there are more than \a most. The step is not 0.
    unsigned count(unsigned most) const
    {
        if (start >= end)
            return 0;
        const std::uint64_t rounds = (std::uint64_t{end} - start + step - 1) / step;
        if (start + rounds * step <= UINT32_MAX)
            return static_cast<unsigned>(std::min<std::uint64_t>(rounds, std::uint64_t{most} + 1));
        // A step that wraps begins again somewhere below the end, so only counting tells.
        unsigned counted = 0;
        for (std::uint32_t i = start; i < end && counted <= most; i += step)
            ++counted;
        return counted;
    }

    void begin(std::string_view index)
    {
        current = start;
        counterName = index;
    }

    /// Makes only the macro that is asked for: few bodies use all of them.
    bool find(std::string_view name, std::string_view *found) override;

    bool advance() override
    {
        current += step;
        return current < end;
    }

private:
    /// A macro of the round by what follows the counter's name in its own; its value is made of
    /// the counter and of what factor and offset make of that. Empty: it is not in Latin-1.
    struct Derived {
        std::string_view suffix;
        std::string (*value)(std::uint32_t counter, std::uint32_t derived);
    };
    static const Derived derivedMacros[];

    std::uint32_t current = 0;
    std::string_view counterName;
    std::string value;
};

namespace
{

/// 0 gives A. Past Z the codes go on, and begin again at 2^16.
char16_t letter(std::uint32_t counter)
{
    return static_cast<char16_t>(counter + 'A');
}

}  // namespace

const CountedRounds::Derived CountedRounds::derivedMacros[] = {
    {"", [](std::uint32_t i, std::uint32_t) { return std::to_string(i); }},
    {"_alpha",
     [](std::uint32_t i, std::uint32_t) {
         return letter(i) > 0xFF ? std::string("?") : std::string(1, static_cast<char>(letter(i)));
     }},
    {"_hex", [](std::uint32_t i, std::uint32_t) { return toHexadecimal(i); }},
    {"_ap", [](std::uint32_t, std::uint32_t ap) { return std::to_string(ap); }},
    {"_ap_hex", [](std::uint32_t, std::uint32_t ap) { return toHexadecimal(ap); }},
};

bool CountedRounds::find(std::string_view name, std::string_view *found)
{
    if (!name.starts_with(counterName))
        return false;
    const std::string_view suffix = name.substr(counterName.size());
    const auto *derived = std::find_if(std::begin(derivedMacros), std::end(derivedMacros),
                                       [&](const Derived &row) { return row.suffix == suffix; });
    if (derived == std::end(derivedMacros))
        return false;
    value = derived->value(current, current * factor + offset);
    *found = value;
    return true;
}


namespace
{

/// <foreach>: all combinations of one value from each list, the last list varying fastest.
class CombinedRounds : public LoopRounds
{
public:
    /// \a values are separated by commas; empty ones do not count.
    void addList(std::string_view name, std::string_view values)
    {
        List list;
        while (!values.empty()) {
            const std::size_t length = std::min(values.find(','), values.size());
            if (length > 0)
                list.values.push_back(values.substr(0, length));
            values.remove_prefix(std::min(length + 1, values.size()));
        }
        positions.insert_or_assign(name, lists.size());
        if (list.values.size() != 1)
            varying.push_back(lists.size());
        lists.push_back(std::move(list));
    }

    /// The number of combinations, \a most + 1 if there are more than \a most.
    unsigned count(unsigned most) const
    {
        std::uint64_t product = 1;
        bool isEmpty = false;
        for (const List &list : lists) {
            isEmpty = isEmpty || list.values.empty();
            product =
                std::min<std::uint64_t>(product * list.values.size(), std::uint64_t{most} + 1);
        }
        return isEmpty ? 0 : static_cast<unsigned>(product);
    }

    bool find(std::string_view name, std::string_view *found) override
    {
        const auto position = positions.find(name);
        if (position == positions.end())
            return false;
        const List &list = lists[position->second];
        *found = list.values[list.current];
        return true;
    }

    bool advance() override
    {
        for (std::size_t i = varying.size(); i-- > 0;) {
            List &list = lists[varying[i]];
            if (++list.current < list.values.size())
                return true;
            list.current = 0;
        }
        return false;
    }

private:
    struct List {
        std::vector<std::string_view> values;
        std::size_t current = 0;
    };

    std::vector<List> lists;
    std::vector<std::size_t> varying;  ///< the lists that do not have just one value
    std::unordered_map<std::string_view, std::size_t, NameHash> positions;
};

}  // namespace

Outcome Walk::handleFor(XMLElement &element, const Level &)
{
    const bool isComplete = element.hasAttribute("index") && element.hasAttribute("start") &&
                            element.hasAttribute("end") && element.hasAttribute("incr") &&
                            element.firstChild;
    CountedRounds rounds;
    if (isComplete)
        readRounds(element, &rounds);
    if (!isComplete || (rounds.step == 0 && rounds.start < rounds.end)) {
        report(QStringLiteral("<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">"));
        return Outcome::remove();
    }
    rounds.begin(attributeText(element, "index"));
    return {.keep = false,
            .following = copyRounds(element, rounds.count(limits.loopRounds), &rounds)};
}

void Walk::readRounds(const XMLElement &element, CountedRounds *rounds)
{
    bool ok = false;
    const auto bound = [&](const char *name) {
        return static_cast<std::uint32_t>(evaluated(&SimpleExpressionParser::evaluateUnsigned,
                                                    attributeText(element, name), &ok));
    };
    const auto derived = [&](const char *name) {
        return static_cast<std::uint32_t>(evaluated(&SimpleExpressionParser::evaluateSigned,
                                                    expanded(attributeText(element, name)), &ok));
    };
    if (element.hasAttribute("add"))
        rounds->offset = derived("add");
    else if (element.hasAttribute("sub"))
        rounds->offset = 0 - derived("sub");
    if (element.hasAttribute("mul"))
        rounds->factor = derived("mul");
    rounds->start = bound("start");
    rounds->end = bound("end");
    rounds->step = bound("incr");
}

Outcome Walk::handleForeach(XMLElement &element, const Level &)
{
    CombinedRounds rounds;
    for (const XMLAttribute &attribute : element.attributes())
        rounds.addList(attribute.name, attribute.value ? attribute.value : "");
    return {.keep = false,
            .following = copyRounds(element, rounds.count(limits.loopRounds), &rounds)};
}

/// Copies of the loop's children, up to the first that is no element, for each of \a count
/// rounds. None, after an error was reported, when those are too many.
Chain Walk::copyRounds(const XMLElement &loop, unsigned count, LoopRounds *rounds)
{
    Chain copies;
    if (count > limits.loopRounds) {
        report(QStringLiteral("more than %1 rounds in <").arg(limits.loopRounds) +
               QString::fromLatin1(loop.name()) + u'>');
        return copies;
    }
    const auto isElement = [](const XMLNode *node) {
        return node && node->kind() == XMLNode::Kind::Element;
    };
    work += count;
    if (count == 0 || !isElement(loop.firstChild))
        return copies;
    do {
        for (const XMLNode *child = loop.firstChild; isElement(child); child = child->nextSibling) {
            copies.append(
                document.copyElementExpanded(static_cast<const XMLElement *>(child), *rounds, &work));
            if (stopPastBounds())
                return copies;
        }
    } while (rounds->advance());
    return copies;
}

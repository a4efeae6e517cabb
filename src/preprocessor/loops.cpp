#include "hexadecimal.h"
#include "namehash.h"
#include "pieces.h"
#include "run.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace directive
{

namespace
{

bool isElement(const XMLNode *node)
{
    return node && node->kind() == XMLNode::Kind::Element;
}

/// The rounds of a loop, and the macros that the copies of its body are expanded with in each.
class LoopRounds : public Rounds, public MacroLookup
{
public:
    bool make(Run &run, Chain *copies) override
    {
        for (const XMLNode *child = body; isElement(child); child = child->nextSibling) {
            copies->append(run.copyExpanded(static_cast<const XMLElement &>(*child), *this));
            if (run.stopPastBounds())
                return false;
        }
        return advance();
    }

    /// What is copied: this and its siblings, up to the first that is no element.
    const XMLNode *body = nullptr;

private:
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

    /// The number of rounds, \a most + 1 if there are more than \a most. The step is not 0. A
    /// counter that gets past 2^32 begins again somewhere below its end, so that only counting
    /// tells; *counted receives how many rounds had to be counted.
    unsigned countUpTo(unsigned most, unsigned *counted) const
    {
        assert(step != 0 || start >= end);
        *counted = 0;
        if (start >= end)
            return 0;
        const std::uint64_t rounds = (std::uint64_t{end} - start + step - 1) / step;
        if (start + rounds * step <= UINT32_MAX)
            return static_cast<unsigned>(std::min<std::uint64_t>(rounds, std::uint64_t{most} + 1));
        for (std::uint32_t i = start; i < end && *counted <= most; i += step)
            ++*counted;
        return *counted;
    }

    void begin(std::string_view index)
    {
        current = start;
        counterName = index;
    }

    /// Makes only the macro that is asked for: few bodies use all of them.
    bool find(std::string_view name, std::string_view *found) override;

private:
    bool advance() override
    {
        current += step;
        return current < end;
    }

    std::uint32_t current = 0;
    std::string_view counterName;
    char digits[10] = {};  ///< of the counter
    std::string value;     ///< of another macro
};

/// 0 gives A. Past Z the codes go on, and begin again at 2^16; one that no byte holds gives '?'.
char letter(std::uint32_t counter)
{
    const auto code = static_cast<std::uint16_t>(counter + 'A');
    return code > 0xFF ? '?' : static_cast<char>(code);
}

/// A macro of the round beside the counter itself, by what follows the counter's name in its own; its
/// value is made of the counter and of what factor and offset make of that.
struct DerivedMacro {
    std::string_view suffix;
    std::string (*value)(std::uint32_t counter, std::uint32_t derived);
};

constexpr DerivedMacro derivedMacros[] = {
    {"_alpha", [](std::uint32_t i, std::uint32_t) { return std::string(1, letter(i)); }},
    {"_hex", [](std::uint32_t i, std::uint32_t) { return toHexadecimal(i); }},
    {"_ap", [](std::uint32_t, std::uint32_t ap) { return std::to_string(ap); }},
    {"_ap_hex", [](std::uint32_t, std::uint32_t ap) { return toHexadecimal(ap); }},
};

bool CountedRounds::find(std::string_view name, std::string_view *found)
{
    if (!name.starts_with(counterName))
        return false;
    const std::string_view suffix = name.substr(counterName.size());
    if (suffix.empty()) {
        *found = {digits, std::to_chars(std::begin(digits), std::end(digits), current).ptr};
        return true;
    }
    const auto *const derived = std::ranges::find(derivedMacros, suffix, &DerivedMacro::suffix);
    if (derived == std::end(derivedMacros))
        return false;
    value = derived->value(current, current * factor + offset);
    *found = value;
    return true;
}

/// <foreach>: all combinations of one value from each list, the last list varying fastest.
class CombinedRounds : public LoopRounds
{
public:
    void addList(std::string_view name, std::vector<std::string_view> values)
    {
        positions.insert_or_assign(name, lists.size());
        if (values.size() != 1)
            varying.push_back(lists.size());
        lists.push_back({std::move(values)});
    }

    /// The number of combinations, \a most + 1 if there are more than \a most.
    unsigned countUpTo(unsigned most) const
    {
        std::uint64_t product = 1;
        for (const List &list : lists)
            product =
                std::min<std::uint64_t>(product * list.values.size(), std::uint64_t{most} + 1);
        return static_cast<unsigned>(product);
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

private:
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

    struct List {
        std::vector<std::string_view> values;
        std::size_t current = 0;
    };

    std::vector<List> lists;
    std::vector<std::size_t> varying;  ///< the lists that do not have just one value
    std::unordered_map<std::string_view, std::size_t, NameHash> positions;
};

/// The \a count \a rounds of \a loop. Nothing, after an error was reported, when those are too many.
Outcome repeat(Run &run, const XMLElement &loop, unsigned count, std::unique_ptr<LoopRounds> rounds)
{
    if (count > run.limits.loopRounds) {
        run.report(std::string("more than ")
                       .append(std::to_string(run.limits.loopRounds))
                       .append(" rounds in <")
                       .append(loop.name())
                       .append(">"));
        return Outcome::remove();
    }
    if (count == 0 || !isElement(loop.firstChild))
        return Outcome::remove();
    rounds->body = loop.firstChild;
    rounds->count = count;
    for (const XMLNode *child = loop.firstChild; isElement(child); child = child->nextSibling)
        run.sharedText += count * textOf(child, UINT64_MAX);
    return {.action = Outcome::Action::Repeat, .rounds = std::move(rounds)};
}

/// The low 32 bits of what the expression \a text gives, as \a evaluate reads it; 0 if it has no
/// value.
template <typename Value>
std::uint32_t numberOf(Run &run, Value (SimpleExpressionParser::*evaluate)(const char *, bool *),
                       const std::string &text)
{
    bool ok = false;
    return static_cast<std::uint32_t>(run.evaluated(evaluate, text, &ok));
}

/// Those that \a element, which has all attributes that it needs, asks for.
std::unique_ptr<CountedRounds> readRounds(Run &run, const XMLElement &element)
{
    const auto derived = [&](const char *name) {
        return numberOf(run, &SimpleExpressionParser::evaluateSigned,
                        run.expanded(attributeText(element, name)));
    };
    const auto bound = [&](const char *name) {
        return numberOf(run, &SimpleExpressionParser::evaluateUnsigned,
                        std::string(attributeText(element, name)));
    };
    auto rounds = std::make_unique<CountedRounds>();
    if (element.hasAttribute("add"))
        rounds->offset = derived("add");
    else if (element.hasAttribute("sub"))
        rounds->offset = 0 - derived("sub");
    if (element.hasAttribute("mul"))
        rounds->factor = derived("mul");
    rounds->start = bound("start");
    rounds->end = bound("end");
    rounds->step = bound("incr");
    return rounds;
}

}  // namespace

Outcome handleFor(Run &run, XMLElement &element, const Level &)
{
    const bool isComplete = element.hasAttribute("index") && element.hasAttribute("start") &&
                            element.hasAttribute("end") && element.hasAttribute("incr") &&
                            element.firstChild;
    std::unique_ptr<CountedRounds> rounds;
    if (isComplete)
        rounds = readRounds(run, element);
    if (!isComplete || (rounds->step == 0 && rounds->start < rounds->end)) {
        run.report("<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">");
        return Outcome::remove();
    }
    unsigned counted = 0;
    const unsigned count = rounds->countUpTo(run.limits.loopRounds, &counted);
    run.budget.spend(Price::CountedRound, counted);
    rounds->begin(attributeText(element, "index"));
    return repeat(run, element, count, std::move(rounds));
}

Outcome handleForeach(Run &run, XMLElement &element, const Level &)
{
    auto rounds = std::make_unique<CombinedRounds>();
    for (const XMLAttribute &attribute : std::as_const(element).attributes()) {
        std::vector<std::string_view> values;
        forEachPiece(&run.budget, Price::ListItem, textOf(attribute), ',',
                     [&](std::string_view value) { values.push_back(value); });
        run.budget.spend(Price::List, 1);
        // There is no combination then, however long the other lists are.
        if (values.empty())
            return Outcome::remove();
        rounds->addList(attribute.name, std::move(values));
    }
    const unsigned count = rounds->countUpTo(run.limits.loopRounds);
    return repeat(run, element, count, std::move(rounds));
}

}  // namespace directive

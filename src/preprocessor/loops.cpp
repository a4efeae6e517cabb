#include "hexadecimal.h"
#include "simpleexpressionparser.h"
#include "walk.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <cstdint>
#include <vector>

using namespace Qt::StringLiterals;

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

    void begin(const QString &index)
    {
        current = start;
        counterName = index;
    }

    /// Makes only the macro that is asked for: few bodies use all of them.
    const QString *find(const QString &name) override;

    bool advance() override
    {
        current += step;
        return current < end;
    }

private:
    /// A macro of the round by what follows the counter's name in its own; its value is made of
    /// the counter and of what factor and offset make of that.
    struct Derived {
        QLatin1StringView suffix;
        QString (*value)(std::uint32_t counter, std::uint32_t derived);
    };
    static const Derived derivedMacros[];

    std::uint32_t current = 0;
    QString counterName;
    QString value;
};

const CountedRounds::Derived CountedRounds::derivedMacros[] = {
    {""_L1, [](std::uint32_t i, std::uint32_t) { return QString::number(i); }},
    {"_alpha"_L1,
     [](std::uint32_t i, std::uint32_t) { return QString(QChar(static_cast<char16_t>(i + 65))); }},
    {"_hex"_L1, [](std::uint32_t i, std::uint32_t) { return toHexadecimal(i); }},
    {"_ap"_L1, [](std::uint32_t, std::uint32_t ap) { return QString::number(ap); }},
    {"_ap_hex"_L1, [](std::uint32_t, std::uint32_t ap) { return toHexadecimal(ap); }},
};

const QString *CountedRounds::find(const QString &name)
{
    if (!name.startsWith(counterName))
        return nullptr;
    const QStringView suffix = QStringView(name).sliced(counterName.size());
    for (const Derived &derived : derivedMacros) {
        if (suffix == derived.suffix) {
            value = derived.value(current, current * factor + offset);
            return &value;
        }
    }
    return nullptr;
}

namespace
{

/// <foreach>: all combinations of one value from each list, the last list varying fastest.
class CombinedRounds : public LoopRounds
{
public:
    void addList(const QString &name, const QString &values)
    {
        const QStringList list = values.split(u',', Qt::SkipEmptyParts);
        positions.insert(name, lists.size());
        if (list.size() != 1)
            varying.push_back(lists.size());
        lists.push_back({list, 0});
    }

    /// The number of combinations, \a most + 1 if there are more than \a most.
    unsigned count(unsigned most) const
    {
        std::uint64_t product = 1;
        bool isEmpty = false;
        for (const List &list : lists) {
            isEmpty = isEmpty || list.values.isEmpty();
            product = std::min<std::uint64_t>(
                product * static_cast<std::uint64_t>(list.values.size()), std::uint64_t{most} + 1);
        }
        return isEmpty ? 0 : static_cast<unsigned>(product);
    }

    const QString *find(const QString &name) override
    {
        const auto position = positions.constFind(name);
        if (position == positions.cend())
            return nullptr;
        const List &list = lists[*position];
        return &list.values[list.current];
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
        QStringList values;
        qsizetype current;
    };

    std::vector<List> lists;
    std::vector<std::size_t> varying;  ///< the lists that do not have just one value
    QHash<QString, std::size_t> positions;
};

}  // namespace

Outcome Walk::handleFor(XMLElement &element, Level &level)
{
    const bool isComplete = element.hasAttribute("index") && element.hasAttribute("start") &&
                            element.hasAttribute("end") && element.hasAttribute("incr") &&
                            element.firstChild;
    CountedRounds rounds;
    if (isComplete)
        readRounds(element, level, &rounds);
    if (!isComplete || (rounds.step == 0 && rounds.start < rounds.end)) {
        report(QStringLiteral("<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">"));
        return Outcome::remove();
    }
    rounds.begin(QString::fromLatin1(element.attribute("index")));
    return {.keep = false,
            .following = copyRounds(element, rounds.count(limits.loopRounds), &rounds)};
}

void Walk::readRounds(const XMLElement &element, const Level &level, CountedRounds *rounds)
{
    SimpleExpressionParser parser;
    bool ok = false;
    const auto bound = [&](const char *name) {
        return static_cast<std::uint32_t>(parser.evaluateUnsigned(element.attribute(name), &ok));
    };
    const auto derived = [&](const char *name) {
        const std::string text = expanded(level, element.attribute(name));
        return static_cast<std::uint32_t>(parser.evaluateSigned(text.c_str(), &ok));
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

Outcome Walk::handleForeach(XMLElement &element, Level &)
{
    CombinedRounds rounds;
    for (const XMLAttribute &attribute : element.attributes())
        rounds.addList(QString::fromLatin1(attribute.name), QString::fromLatin1(attribute.value));
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
    if (count == 0 || !isElement(loop.firstChild))
        return copies;
    do {
        for (const XMLNode *child = loop.firstChild; isElement(child); child = child->nextSibling) {
            copies.append(
                document.copyElementExpanded(static_cast<const XMLElement *>(child), *rounds));
            if (stopIfGrownTooFar())
                return copies;
        }
    } while (rounds->advance());
    return copies;
}

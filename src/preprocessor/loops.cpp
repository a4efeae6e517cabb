#include "simpleexpressionparser.h"
#include "walk.h"

#include <QStringList>

#include <ranges>
#include <vector>

using namespace Qt::StringLiterals;

/// The rounds of a loop, and the macros that the copies of its body are expanded with in each.
class LoopRounds : public MacroLookup
{
public:
    /// Goes on to the next round; false when there is none.
    virtual bool advance() = 0;
};

namespace
{

/// <for>: a counter that wraps at 2^32, and what is derived from it.
class CountedRounds : public LoopRounds
{
public:
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    std::uint32_t step = 0;
    std::uint32_t factor = 1;
    std::uint32_t offset = 0;

    /// The number of rounds, \a most + 1 if there are more than \a most.
    unsigned count(unsigned most) const
    {
        unsigned rounds = 0;
        for (std::uint32_t i = start; i < end && rounds <= most; i += step)
            ++rounds;
        return rounds;
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

QString hex(std::uint32_t value)
{
    return QStringLiteral("0x") + QString::number(value, 16).toUpper();
}

const CountedRounds::Derived CountedRounds::derivedMacros[] = {
    {""_L1, [](std::uint32_t i, std::uint32_t) { return QString::number(i); }},
    {"_alpha"_L1,
     [](std::uint32_t i, std::uint32_t) { return QString(QChar(static_cast<char16_t>(i + 65))); }},
    {"_hex"_L1, [](std::uint32_t i, std::uint32_t) { return hex(i); }},
    {"_ap"_L1, [](std::uint32_t, std::uint32_t ap) { return QString::number(ap); }},
    {"_ap_hex"_L1, [](std::uint32_t, std::uint32_t ap) { return hex(ap); }},
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

/// <foreach>: all combinations of one value from each list, the last list varying fastest.
class CombinedRounds : public LoopRounds
{
public:
    void addList(const QString &name, const QString &values)
    {
        lists.push_back({name, values.split(u',', Qt::SkipEmptyParts), 0});
    }

    /// The number of combinations, \a most + 1 if there are more than \a most.
    unsigned count(unsigned most) const
    {
        quint64 product = 1;
        bool isEmpty = false;
        for (const List &list : lists) {
            isEmpty = isEmpty || list.values.isEmpty();
            product = std::min<quint64>(product * static_cast<quint64>(list.values.size()),
                                        quint64{most} + 1);
        }
        return isEmpty ? 0 : static_cast<unsigned>(product);
    }

    const QString *find(const QString &name) override
    {
        for (const List &list : lists) {
            if (list.name == name)
                return &list.values[list.position];
        }
        return nullptr;
    }

    bool advance() override
    {
        for (List &list : std::views::reverse(lists)) {
            if (++list.position < list.values.size())
                return true;
            list.position = 0;
        }
        return false;
    }

private:
    struct List {
        QString name;
        QStringList values;
        qsizetype position;
    };

    std::vector<List> lists;
};

}  // namespace

Outcome Walk::handleFor(XMLElement &element, Level &level)
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
    const bool isComplete = element.hasAttribute("index") && element.hasAttribute("start") &&
                            element.hasAttribute("end") && element.hasAttribute("incr") &&
                            element.firstChild;
    CountedRounds rounds;
    if (isComplete) {
        if (element.hasAttribute("add"))
            rounds.offset = derived("add");
        else if (element.hasAttribute("sub"))
            rounds.offset = 0 - derived("sub");
        if (element.hasAttribute("mul"))
            rounds.factor = derived("mul");
        rounds.start = bound("start");
        rounds.end = bound("end");
        rounds.step = bound("incr");
    }
    if (!isComplete || (rounds.step == 0 && rounds.start < rounds.end)) {
        report(QStringLiteral("<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">"));
        return Outcome::remove();
    }
    const unsigned count = rounds.count(limits.loopRounds);
    if (count > limits.loopRounds) {
        report(QStringLiteral("more than %1 rounds in <for>").arg(limits.loopRounds));
        return Outcome::remove();
    }
    rounds.begin(QString::fromLatin1(element.attribute("index")));
    return {.keep = false, .following = count > 0 ? copyRounds(element, rounds) : Chain{}};
}

Outcome Walk::handleForeach(XMLElement &element, Level &)
{
    CombinedRounds rounds;
    for (const XMLAttribute &attribute : element.attributes())
        rounds.addList(QString::fromLatin1(attribute.name), QString::fromLatin1(attribute.value));
    const unsigned count = rounds.count(limits.loopRounds);
    if (count > limits.loopRounds) {
        report(QStringLiteral("more than %1 rounds in <foreach>").arg(limits.loopRounds));
        return Outcome::remove();
    }
    return {.keep = false, .following = count > 0 ? copyRounds(element, rounds) : Chain{}};
}

/// Copies of the loop's children, up to the first that is no element, for every round.
Chain Walk::copyRounds(const XMLElement &loop, LoopRounds &rounds)
{
    Chain copies;
    const auto isElement = [](const XMLNode *node) {
        return node && node->kind() == XMLNode::Kind::Element;
    };
    if (!isElement(loop.firstChild))
        return copies;
    do {
        for (const XMLNode *child = loop.firstChild; isElement(child); child = child->nextSibling) {
            copies.append(
                document.copyElementExpanded(static_cast<const XMLElement *>(child), rounds));
            if (hasGrownTooFar())
                return copies;
        }
    } while (rounds.advance());
    return copies;
}

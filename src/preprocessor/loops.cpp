#include "simpleexpressionparser.h"
#include "walk.h"

#include <QStringList>

#include <vector>

/// The rounds of a loop: which macros the copies of its body are expanded with in each.
class LoopRounds
{
public:
    virtual ~LoopRounds() = default;

    /// The macros of the current round.
    virtual const MacroMap &macros() = 0;

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
    QString index;

    /// The number of rounds, \a most + 1 if there are more than \a most.
    unsigned count(unsigned most) const
    {
        unsigned rounds = 0;
        for (std::uint32_t i = start; i < end && rounds <= most; i += step)
            ++rounds;
        return rounds;
    }

    void begin() { current = start; }

    const MacroMap &macros() override
    {
        const std::uint32_t derived = current * factor + offset;
        map.insert(index, QString::number(current));
        map.insert(index + QStringLiteral("_alpha"), QChar(static_cast<char16_t>(current + 65)));
        map.insert(index + QStringLiteral("_hex"), hex(current));
        map.insert(index + QStringLiteral("_ap"), QString::number(derived));
        map.insert(index + QStringLiteral("_ap_hex"), hex(derived));
        return map;
    }

    bool advance() override
    {
        current += step;
        return current < end;
    }

private:
    static QString hex(std::uint32_t value)
    {
        return QStringLiteral("0x") + QString::number(value, 16).toUpper();
    }

    std::uint32_t current = 0;
    MacroMap map;
};

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

    const MacroMap &macros() override
    {
        for (const List &list : lists)
            map.insert(list.name, list.values[list.position]);
        return map;
    }

    bool advance() override
    {
        for (auto list = lists.rbegin(); list != lists.rend(); ++list) {
            if (++list->position < list->values.size())
                return true;
            list->position = 0;
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
    MacroMap map;
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
        rounds.index = QString::fromLatin1(element.attribute("index"));
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
    rounds.begin();
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
        const MacroMap &macros = rounds.macros();
        for (const XMLNode *child = loop.firstChild; isElement(child); child = child->nextSibling) {
            copies.append(
                document.copyElementExpanded(static_cast<const XMLElement *>(child), macros));
            if (hasGrownTooFar())
                return copies;
        }
    } while (rounds.advance());
    return copies;
}

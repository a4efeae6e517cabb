#include "tokenpattern.h"

namespace
{

using CharacterSet = TokenPattern::CharacterSet;

CharacterSet range(unsigned char first, unsigned char last)
{
    CharacterSet set;
    for (unsigned int c = first; c <= last; ++c)
        set.set(c);
    return set;
}

CharacterSet only(char c)
{
    return range(static_cast<unsigned char>(c), static_cast<unsigned char>(c));
}

/// What the character behind a backslash stands for.
CharacterSet escaped(char c)
{
    switch (c) {
    case 'd':
        return range('0', '9');
    case 's':
        return range(9, 13) | only(' ') | range(0xA0, 0xA0);
    default:
        return only(c);
    }
}

/// Takes the first character of *rest, which must not be empty.
char take(QByteArrayView *rest)
{
    const char c = rest->front();
    *rest = rest->sliced(1);
    return c;
}

/// One member of a set: an escape, a range or a character.
CharacterSet takeMember(QByteArrayView *rest)
{
    const char c = take(rest);
    if (c == '\\' && !rest->isEmpty())
        return escaped(take(rest));
    if (rest->size() > 1 && rest->front() == '-' && rest->at(1) != ']') {
        take(rest);
        return range(static_cast<unsigned char>(c), static_cast<unsigned char>(take(rest)));
    }
    return only(c);
}

/// The set whose opening bracket is taken already. Empty: nothing closes it.
CharacterSet takeSet(QByteArrayView *rest)
{
    CharacterSet set;
    const bool inverted = rest->startsWith('^');
    if (inverted)
        take(rest);
    while (!rest->isEmpty() && rest->front() != ']')
        set |= takeMember(rest);
    if (rest->isEmpty())
        return {};
    take(rest);
    return inverted ? ~set : set;
}

}  // namespace

TokenPattern::TokenPattern(QByteArrayView pattern)
    : source(pattern.toByteArray()),
      valid(compile(pattern))
{
}

TokenPattern::Step TokenPattern::makeStep(const CharacterSet &set)
{
    auto table = std::make_shared<CharacterTable>();
    for (std::size_t c = 0; c < set.size(); ++c)
        (*table)[c] = set[c];
    return {.table = set.any() ? std::move(table) : nullptr};
}

/// The next part of a pattern, without what repeats it. False: it is no part that a pattern can
/// have.
bool TokenPattern::takePart(QByteArrayView *rest, Step *step)
{
    char c = take(rest);
    if (c == '[') {
        *step = makeStep(takeSet(rest));
        return step->table != nullptr;
    }
    if (c != '\\') {
        step->character = c;
        return !QByteArrayView(".?*+|()]{}^$").contains(c);
    }
    if (rest->isEmpty())
        return false;
    c = take(rest);
    if (c == 'd' || c == 's')
        *step = makeStep(escaped(c));
    else
        step->character = c;
    return true;
}

bool TokenPattern::compile(QByteArrayView pattern)
{
    while (!pattern.isEmpty()) {
        Step step;
        if (!takePart(&pattern, &step)) {
            steps.clear();
            return false;
        }
        if (pattern.startsWith('+') || pattern.startsWith('*')) {
            step.repeated = true;
            step.optional = take(&pattern) == '*';
        }
        steps.push_back(std::move(step));
    }
    return true;
}

QByteArray TokenPattern::firstCharacters() const
{
    QByteArray characters;
    for (const Step &step : steps) {
        if (!step.table)
            characters += step.character;
        for (std::size_t c = 0; step.table && c < step.table->size(); ++c) {
            if ((*step.table)[c])
                characters += static_cast<char>(c);
        }
        if (!step.optional)
            break;
    }
    return characters;
}

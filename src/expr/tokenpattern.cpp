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

/// What the next part of a pattern may match. Empty: it is no part that a pattern can have.
CharacterSet takePart(QByteArrayView *rest)
{
    const char c = take(rest);
    if (c == '[')
        return takeSet(rest);
    if (c == '\\')
        return rest->isEmpty() ? CharacterSet() : escaped(take(rest));
    return QByteArrayView(".?*+|()]{}^$").contains(c) ? CharacterSet() : only(c);
}

}  // namespace

TokenPattern::TokenPattern(QByteArrayView pattern)
    : source(pattern.toByteArray()),
      valid(compile(pattern))
{
}

bool TokenPattern::compile(QByteArrayView pattern)
{
    while (!pattern.isEmpty()) {
        const CharacterSet set = takePart(&pattern);
        if (set.none()) {
            steps.clear();
            return false;
        }
        Step &step = steps.emplace_back();
        for (std::size_t c = 0; c < set.size(); ++c)
            step.takes[c] = set[c];
        if (pattern.startsWith('+') || pattern.startsWith('*')) {
            step.repeated = true;
            step.optional = take(&pattern) == '*';
        }
    }
    return true;
}

TokenPattern::CharacterSet TokenPattern::firstCharacters() const
{
    CharacterSet set;
    for (const Step &step : steps) {
        for (std::size_t c = 0; c < set.size(); ++c)
            set[c] = set[c] || step.takes[c];
        if (!step.optional)
            break;
    }
    return set;
}

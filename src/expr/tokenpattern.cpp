#include "tokenpattern.h"

#include <algorithm>
#include <utility>

namespace
{

using CharacterSet = TokenPattern::CharacterSet;

void addRange(unsigned char first, unsigned char last, CharacterSet *set)
{
    for (unsigned int c = first; c <= last; ++c)
        (*set)[c] = true;
}

void add(char c, CharacterSet *set)
{
    (*set)[static_cast<unsigned char>(c)] = true;
}

/// Adds what the character behind a backslash stands for.
void addEscaped(char c, CharacterSet *set)
{
    switch (c) {
    case 'd':
        addRange('0', '9', set);
        break;
    case 's':
        addRange(9, 13, set);
        addRange(' ', ' ', set);
        addRange(0xA0, 0xA0, set);
        break;
    default:
        add(c, set);
    }
}

/// Takes the first character of *rest, which must not be empty.
char take(QByteArrayView *rest)
{
    const char c = rest->front();
    *rest = rest->sliced(1);
    return c;
}

/// Adds one member of a set: an escape, a range or a character.
void takeMember(QByteArrayView *rest, CharacterSet *set)
{
    const char c = take(rest);
    if (c == '\\' && !rest->isEmpty()) {
        addEscaped(take(rest), set);
    } else if (rest->size() > 1 && rest->front() == '-' && rest->at(1) != ']') {
        take(rest);
        addRange(static_cast<unsigned char>(c), static_cast<unsigned char>(take(rest)), set);
    } else {
        add(c, set);
    }
}

/// The set whose opening bracket is taken already. False: nothing closes it, or it is empty.
bool takeSet(QByteArrayView *rest, CharacterSet *set)
{
    const bool inverted = rest->startsWith('^');
    if (inverted)
        take(rest);
    while (!rest->isEmpty() && rest->front() != ']')
        takeMember(rest, set);
    if (rest->isEmpty())
        return false;
    take(rest);
    for (bool &isMember : *set)
        isMember = isMember != inverted;
    return std::ranges::find(*set, true) != set->end();
}

}  // namespace

TokenPattern::TokenPattern(QByteArray pattern) : source(std::move(pattern)), valid(compile()) {}

/// The next part of a pattern, without what repeats it. False: it is no part that a pattern can
/// have.
bool TokenPattern::takePart(QByteArrayView *rest, Step *step)
{
    char c = take(rest);
    if (c == '[') {
        auto set = std::make_shared<CharacterSet>();
        const bool isSet = takeSet(rest, set.get());
        step->set = std::move(set);
        return isSet;
    }
    if (c != '\\') {
        step->character = c;
        return !QByteArrayView(".?*+|()]{}^$").contains(c);
    }
    if (rest->isEmpty())
        return false;
    c = take(rest);
    if (c == 'd' || c == 's') {
        auto set = std::make_shared<CharacterSet>();
        addEscaped(c, set.get());
        step->set = std::move(set);
    } else {
        step->character = c;
    }
    return true;
}

bool TokenPattern::compile()
{
    QByteArrayView rest = source;
    while (!rest.isEmpty()) {
        Step &step = steps.emplace_back();
        if (!takePart(&rest, &step)) {
            steps.clear();
            return false;
        }
        if (rest.startsWith('+') || rest.startsWith('*')) {
            step.repeated = true;
            step.optional = take(&rest) == '*';
        }
    }
    return true;
}

#pragma once

#include <QByteArray>

#include <array>
#include <memory>
#include <vector>

/// The form of one kind of token: a chain of character sets, matched from left to right. The
/// notation is the part of regular expressions that the tokens need:
///
///     c        the character itself, unless it is one of . ? * + | ( ) [ ] { } ^ $ and the backslash
///     \c       the character c; \d is any digit 0 to 9, \s any white space
///     [...]    one of a set: characters, ranges as in a-z, \d, \s and \c; [^...] all others
///     +  *     behind one of these: one or more of it, none or more of it
///
/// White space is 9 to 13, 32 and 0xA0; text is Latin-1. A repeated set takes all that it can and
/// gives nothing back, so what follows it must begin outside the set. Anything else makes the
/// pattern invalid, and an invalid pattern matches nowhere.
class TokenPattern
{
public:
    /// By character, whether it is one of them.
    using CharacterSet = std::array<bool, 256>;

    explicit TokenPattern(QByteArray pattern);

    /// The pattern as it was given.
    const QByteArray &text() const { return source; }
    bool isValid() const { return valid; }
    /// Hands each character with which a match can begin to \a take; none for an invalid pattern.
    /// One that more than one part of the pattern can begin with is handed over as often.
    template <typename Take>
    void forEachFirstCharacter(Take take) const;
    /// Characters of [first, last) that the pattern takes, beginning at first. 0: no match.
    qsizetype match(const char *first, const char *last) const;

private:
    struct Step {
        char character = 0;  ///< the one that it takes; most steps take no other
        std::shared_ptr<const CharacterSet> set = nullptr;  ///< of those it takes, else
        bool optional = false;                              ///< may take no character
        bool repeated = false;                              ///< may take more than one

        bool takes(char c) const
        {
            return set ? (*set)[static_cast<unsigned char>(c)] : c == character;
        }
    };

    static bool takePart(QByteArrayView *rest, Step *step);

    bool compile();

    QByteArray source;
    std::vector<Step> steps;  ///< none where the pattern is invalid
    bool valid;
};

// Inline, because every token passes through here, often more than once.
inline qsizetype TokenPattern::match(const char *first, const char *last) const
{
    const char *next = first;
    for (const Step &step : steps) {
        if (next != last && step.takes(*next)) {
            ++next;
            while (step.repeated && next != last && step.takes(*next))
                ++next;
        } else if (!step.optional) {
            return 0;
        }
    }
    return next - first;
}

template <typename Take>
void TokenPattern::forEachFirstCharacter(Take take) const
{
    for (const Step &step : steps) {
        if (!step.set)
            take(step.character);
        for (std::size_t c = 0; step.set && c < step.set->size(); ++c) {
            if ((*step.set)[c])
                take(static_cast<char>(c));
        }
        if (!step.optional)
            break;
    }
}

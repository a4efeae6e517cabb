#pragma once

#include <array>
#include <cassert>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
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
///
/// All of this is inline, because the compiler itself reads the patterns of the grammar, and because
/// every token is matched, often more than once.
class TokenPattern
{
public:
    /// Characters, each as a bit.
    class CharacterSet
    {
    public:
        constexpr bool contains(char c) const
        {
            const auto code = static_cast<unsigned char>(c);
            return ((bits[code / 64] >> (code % 64)) & 1) != 0;
        }
        constexpr void addRange(char first, char last)
        {
            const unsigned int end = static_cast<unsigned char>(last) + 1U;
            for (unsigned int code = static_cast<unsigned char>(first); code < end; ++code)
                bits[code / 64] |= 1ULL << (code % 64);
        }
        /// Adds what the character behind a backslash stands for.
        constexpr void addEscaped(char c)
        {
            if (c == 'd') {
                addRange('0', '9');
            } else if (c == 's') {
                addRange('\t', '\r');
                addRange(' ', ' ');
                addRange('\xA0', '\xA0');
            } else {
                addRange(c, c);
            }
        }
        constexpr void invert()
        {
            for (std::uint64_t &part : bits)
                part = ~part;
        }
        constexpr bool isEmpty() const { return (bits[0] | bits[1] | bits[2] | bits[3]) == 0; }

    private:
        std::array<std::uint64_t, 4> bits = {};
    };

    /// One part of a pattern.
    struct Step {
        CharacterSet set;
        bool optional = false;  ///< may take no character
        bool repeated = false;  ///< may take more than one
    };

    explicit TokenPattern(std::string_view pattern) : source(pattern)
    {
        while (!pattern.empty()) {
            if (!takeStep(&pattern, &steps.emplace_back())) {
                steps.clear();
                break;
            }
        }
    }

    /// The pattern as it was given.
    const std::string &text() const { return source; }
    /// Characters at the beginning of \a input that the pattern takes. 0: no match.
    std::size_t match(std::string_view input) const { return match(steps, input); }

    static constexpr std::size_t match(std::span<const Step> steps, std::string_view input)
    {
        const char *next = input.data();
        const char *last = next + input.size();
        for (const Step &step : steps) {
            if (next != last && step.set.contains(*next)) {
                ++next;
                while (step.repeated && next != last && step.set.contains(*next))
                    ++next;
            } else if (!step.optional) {
                return 0;
            }
        }
        return static_cast<std::size_t>(next - input.data());
    }

    /// Cuts the first step off *pattern, which must not be empty. False: it is none that a pattern
    /// can have.
    static constexpr bool takeStep(std::string_view *pattern, Step *step)
    {
        const char c = take(pattern);
        if (c == '[') {
            if (!takeSet(pattern, &step->set))
                return false;
        } else if (c == '\\') {
            if (pattern->empty())
                return false;
            step->set.addEscaped(take(pattern));
        } else if (std::string_view(".?*+|()]{}^$").find(c) == std::string_view::npos) {
            step->set.addRange(c, c);
        } else {
            return false;
        }
        if (pattern->starts_with('+') || pattern->starts_with('*')) {
            step->repeated = true;
            step->optional = take(pattern) == '*';
        }
        return true;
    }

private:
    /// Takes the first character of *rest, which must not be empty.
    static constexpr char take(std::string_view *rest)
    {
        assert(!rest->empty());
        const char c = rest->front();
        rest->remove_prefix(1);
        return c;
    }

    /// The set whose opening bracket is taken already. False: nothing closes it, or it is empty.
    static constexpr bool takeSet(std::string_view *rest, CharacterSet *set)
    {
        const bool inverted = rest->starts_with('^');
        if (inverted)
            take(rest);
        while (!rest->empty() && rest->front() != ']')
            takeMember(rest, set);
        if (rest->empty())
            return false;
        take(rest);
        if (inverted)
            set->invert();
        return !set->isEmpty();
    }

    /// Adds one member of a set: an escape, a range or a character.
    static constexpr void takeMember(std::string_view *rest, CharacterSet *set)
    {
        const char c = take(rest);
        if (c == '\\' && !rest->empty()) {
            set->addEscaped(take(rest));
        } else if (rest->size() > 1 && rest->front() == '-' && (*rest)[1] != ']') {
            take(rest);
            set->addRange(c, take(rest));
        } else {
            set->addRange(c, c);
        }
    }

    std::string source;
    std::vector<Step> steps;  ///< none where the pattern is invalid
};

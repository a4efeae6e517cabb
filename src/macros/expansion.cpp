#include "macrovalues.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <new>
#include <vector>

namespace
{

/// What the parts of an expansion cost, in picoseconds, as measured. Plain text is found and copied
/// many characters at a time.
namespace price
{
constexpr std::uint64_t pass = 9000;
constexpr std::uint64_t introducer = 6500;
constexpr std::uint64_t reference = 11000;
constexpr std::uint64_t plainPass = 8000;
constexpr std::uint64_t dateOrTime = 30000;
constexpr std::uint64_t characterPassed = 8;
constexpr std::uint64_t characterAppended = 18;
constexpr std::uint64_t characterInReference = 650;
constexpr std::uint64_t characterNoted = 2000;  ///< searched for what is never closed
}  // namespace price

/// Whether \a c is one of the many characters that mean nothing in a reference, as letters and
/// digits are. Says of some others that it is not.
bool isOrdinary(char c)
{
    return c > ')' && c != ':';
}

struct Parts {
    std::string_view name;
    std::string_view fallback;  ///< for where there is no macro of that name
    bool hasTwoColons;
};

/// The parts of a reference that is written like this, with its first colon there.
Parts partsOf(std::string_view reference, std::size_t colon)
{
    const std::size_t end = reference.size() - 1;
    if (colon > end)
        return {{reference.data() + 2, end - 2}, reference, false};
    const bool hasTwoColons = reference[colon + 1] == ':';
    const std::size_t start = colon + 1 + hasTwoColons;
    return {
        {reference.data() + 2, colon - 2}, {reference.data() + start, end - start}, hasTwoColons};
}

/// Whether it is worth asking MacroValues::readClock(). Takes no call.
bool canBeClock(std::string_view name)
{
    return name.size() >= 4 &&
           (std::memcmp(name.data(), "Date", 4) == 0 || std::memcmp(name.data(), "Time", 4) == 0);
}

/// One expansion: passes over a text, each of which makes the text of the next.
///
/// A pass copies what is plain and replaces what are references, from left to right, and never
/// looks at what it has put in. Whether another one follows is what the last reference with an
/// opinion says: one that holds the introducer asks for it, one with "::" forbids it. So
/// "$(u:$(a))" takes two passes, of which the first leaves "$(a)". Text can ask forever: the bounds
/// end it.
///
/// An unterminated reference, "$(" without the parenthesis that balances it, loses its introducer,
/// and the scan goes on behind that. But what it would have held, the rest of the text, has the same
/// opinions. If each of many such references searched the rest, a pass would take quadratic time. So
/// the first one that is met looks through the rest once, from the end, and notes at every
/// parenthesis that nothing closes what its reference says. A reference that does end is searched
/// once, so a pass is linear in its text and what it puts in.
class Expansion
{
public:
    Expansion(MacroLookup *lookup, const MacroValues &rules, std::string *target)
        : macros(*lookup),
          values(rules),
          result(*target)
    {
    }

    /// Leaves the expansion of \a text in the target. Returns what it cost, in steps.
    std::uint64_t run(std::string_view text)
    {
        longest = std::max(values.limits.length, text.size());
        std::string working;
        std::size_t rescanned = 0;
        for (int passes = 1;; ++passes) {
            runPass(text);
            if (!rescan || result == text || passes >= values.limits.passes ||
                rescanned >= values.limits.rescanned)
                return cost / 1000;
            working.swap(result);
            text = working;
            rescanned += text.size();
        }
    }

private:
    /// What the reference of a parenthesis says about another pass, if nothing closes it.
    enum class Unclosed : char { No, Silent, Asks, Forbids };

    void runPass(std::string_view text);
    std::size_t passReference(std::string_view text, std::size_t opening);
    void noteUnclosed(std::string_view text, std::size_t from);
    void substitute(std::string_view reference, std::size_t colon);
    void append(std::string_view piece);

    MacroLookup &macros;
    const MacroValues &values;
    std::string &result;
    std::size_t longest = 0;
    std::uint64_t cost = 0;  ///< in picoseconds
    bool rescan = false;
    std::vector<Unclosed> unclosed;  ///< by place in the pass's text, once one was met
};

void Expansion::runPass(std::string_view text)
{
    result.clear();
    rescan = false;
    unclosed.clear();
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t found =
            std::min(text.find(values.macroIntroducer, position), text.size());
        append(text.substr(position, found - position));
        position = found + 1;
        if (found == text.size())
            break;
        cost += price::introducer;
        if (text.substr(position).starts_with('('))
            position = passReference(text, position);
        else
            append(text.substr(found, 1));
    }
    cost += price::pass + price::characterPassed * text.size() +
            price::characterAppended * result.size();
}

/// Replaces the reference of that parenthesis. Returns where the scan goes on.
std::size_t Expansion::passReference(std::string_view text, std::size_t opening)
{
    if (unclosed.empty() || unclosed[opening] == Unclosed::No) {
        std::size_t colon = std::string_view::npos;
        std::size_t depth = 0;
        bool isNested = false;
        for (std::size_t i = opening; i < text.size(); ++i) {
            const char c = text[i];
            if (isOrdinary(c))
                continue;
            if (c == ')' && --depth == 0) {
                rescan = rescan || isNested;
                substitute(text.substr(opening - 1, i + 2 - opening), colon);
                return i + 1;
            }
            depth += c == '(';
            if (c == ':')
                colon = std::min(colon, i + 1 - opening);
            isNested = isNested || c == values.macroIntroducer;
        }
        noteUnclosed(text, opening);
    }
    if (unclosed[opening] != Unclosed::Silent)
        rescan = unclosed[opening] == Unclosed::Asks;
    return opening;
}

void Expansion::noteUnclosed(std::string_view text, std::size_t from)
{
    assert(unclosed.empty());
    unclosed.assign(text.size(), Unclosed::No);
    cost += price::characterNoted * (text.size() - from);
    std::size_t closing = 0;
    bool asks = false;
    bool forbids = false;
    for (std::size_t i = text.size(); i-- > from;) {
        const char c = text[i];
        if (c == ')')
            ++closing;
        else if (c == '(' && closing > 0)
            --closing;
        else if (c == '(')
            unclosed[i] = forbids ? Unclosed::Forbids : asks ? Unclosed::Asks : Unclosed::Silent;
        else if (c == ':')
            forbids = text.substr(i + 1).starts_with(':');
        asks = asks || c == values.macroIntroducer;
    }
}

/// Appends what \a reference, written like this, stands for; its first colon is at \a colon.
void Expansion::substitute(std::string_view reference, std::size_t colon)
{
    cost += price::reference + price::characterInReference * reference.size();
    auto [name, value, hasTwoColons] = partsOf(reference, colon);
    rescan = rescan && !hasTwoColons;
    std::string now;
    if (macros.find(name, &value) && canBeClock(name) && MacroValues::readClock(name, &now)) {
        cost += price::dateOrTime;
        value = now;
    }
    append(value);
}

void Expansion::append(std::string_view piece)
{
    result.append(piece);
    if (result.size() > longest)
        throw std::bad_alloc();
}

/// Looks for the end of the reference that \a text begins with, and for its first colon. What is
/// found is a parenthesis only if the reference is plain: with no other one and no parenthesis in it.
std::size_t endOfPlain(std::string_view text, char introducer, std::size_t *colon)
{
    if (!text.substr(1).starts_with('('))
        return 0;
    std::size_t end = 2;
    for (; end < text.size(); ++end) {
        const char c = text[end];
        if (isOrdinary(c))
            continue;
        if (c == ')' || c == '(' || c == introducer)
            break;
        if (c == ':')
            *colon = std::min(*colon, end);
    }
    return end;
}

/// How much of \a text stands before the first \a byte. That is mostly little, for which a call would
/// cost more than the search.
std::size_t lengthUpTo(char byte, std::string_view text)
{
    const std::size_t few = std::min<std::size_t>(text.size(), 8);
    for (std::size_t i = 0; i < few; ++i) {
        if (text[i] == byte)
            return i;
    }
    return std::min(text.find(byte, few), text.size());
}

/// Memory that a text is put together in.
struct Room {
    std::span<char> memory;
    std::size_t used = 0;

    /// False where there is not enough.
    bool append(std::string_view piece)
    {
        if (piece.size() > memory.size() - used)
            return false;
        std::memmove(memory.data() + used, piece.data(), piece.size());
        used += piece.size();
        return true;
    }
};

/// MacroValues::expandPlain() that adds to the cost, in picoseconds. False where the text is not plain.
bool plainExpansion(MacroLookup &macros, std::string_view text, char introducer, Room *result,
                    std::uint64_t *cost)
{
    for (;;) {
        const std::size_t found = lengthUpTo(introducer, text);
        if (found > 0 && !result->append(text.substr(0, found)))
            return false;
        text.remove_prefix(found);
        if (text.empty())
            return true;
        std::size_t colon = std::string_view::npos;
        const std::size_t end = endOfPlain(text, introducer, &colon);
        *cost += price::reference + price::characterInReference * end;
        if (end == text.size() || text[end] != ')')
            return false;
        auto [name, value, hasTwoColons] = partsOf(text.substr(0, end + 1), colon);
        macros.find(name, &value);
        if (canBeClock(name) || !result->append(value))
            return false;
        text.remove_prefix(end + 1);
    }
}

}  // namespace

std::string MacroValues::expandMacros(const MacroMap &macros, std::string_view text,
                                      bool useSystemMacros) const
{
    MapLookup lookup(&macros, useSystemMacros ? &systemMacros : nullptr);
    std::string result;
    expand(lookup, text, &result);
    return result;
}

std::uint64_t MacroValues::expand(MacroLookup &macros, std::string_view text,
                                  std::string *result) const
{
    assert(text.data() < result->data() || text.data() > result->data() + result->size());
    return Expansion(&macros, *this, result).run(text);
}

std::size_t MacroValues::expandPlain(MacroLookup &macros, std::string_view text,
                                     std::span<char> room, std::uint64_t *steps) const
{
    if (room.empty())
        return notPlain;
    std::uint64_t cost = price::plainPass;
    Room result{room.first(std::min(room.size(), limits.length))};
    const bool isPlain = plainExpansion(macros, text, macroIntroducer, &result, &cost);
    cost += (price::characterPassed + price::characterAppended) * result.used;
    *steps += cost / 1000;
    return isPlain ? result.used : notPlain;
}

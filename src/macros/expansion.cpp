#include "datetime.h"
#include "macrovalues.h"

#include <algorithm>
#include <cassert>
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
constexpr std::uint64_t reference = 22000;
constexpr std::uint64_t dateOrTime = 25000;
constexpr std::uint64_t unclosed = 3000;  ///< an introducer whose reference has no end
constexpr std::uint64_t characterPassed = 8;
constexpr std::uint64_t characterAppended = 18;
constexpr std::uint64_t characterInReference = 700;
constexpr std::uint64_t characterNoted = 1500;  ///< searched for what is never closed
}  // namespace price

/// One expansion: passes over a text, each of which makes the text of the next.
///
/// A pass copies what is plain and replaces what are references, from left to right, and never
/// looks at what it has put in. Whether there is another pass over all of it is what the last
/// reference with an opinion says: one that holds the introducer asks for it, one with "::" asks
/// that there be none. So "$(u:$(a))" takes two passes, of which the first leaves "$(a)", and
/// text may need as many as it is nested deep, or ask for another one forever: the bounds end it.
///
/// An unterminated reference, "$(" without the parenthesis that balances it, loses its introducer,
/// and the scan goes on behind that. But what it would have held, the whole rest of the text, has
/// the same two opinions. If each of many such references searched the rest for its end, and for
/// what it holds, a pass would take quadratic time. So the first one that is met looks through the
/// rest once and notes which parentheses are never closed, and the places of the next introducer
/// and of the next colon are remembered. A reference that does end is searched once: the scan goes
/// on behind it. A pass is thus linear in its text and what it puts in.
class Expansion
{
public:
    Expansion(MacroLookup *lookup, const MacroValues &values, std::string *target)
        : macros(*lookup),
          introducer(values.macroIntroducer),
          limits(values.limits),
          result(*target)
    {
    }

    /// Leaves the expansion of \a text in the target. Returns what it cost, in steps.
    std::uint64_t run(std::string_view text)
    {
        longest = std::max(limits.length, text.size());
        std::string working;
        std::size_t rescanned = 0;
        for (int passes = 1;; ++passes) {
            result.clear();
            runPass(text);
            if (!rescan || result == text || passes >= limits.passes ||
                rescanned >= limits.rescanned)
                return cost / 1000;
            working.swap(result);
            text = working;
            rescanned += text.size();
        }
    }

private:
    /// Where in the text a reference is.
    struct Reference {
        std::size_t start;                           ///< behind the opening parenthesis
        std::size_t end = std::string_view::npos;    ///< the closing one
        std::size_t colon = std::string_view::npos;  ///< the first in it
        bool isNested = false;                       ///< the introducer is in it
    };

    void runPass(std::string_view text);
    std::size_t passReference(std::string_view text, std::size_t start);
    bool findEnd(std::string_view text, Reference *reference);
    void noteUnclosed(std::string_view text, std::size_t from);
    void heedUnclosed(std::string_view text, std::size_t start);
    void substitute(std::string_view text, const Reference &reference);
    void lookUp(std::string_view name, std::string_view *value);
    void append(std::string_view piece);

    MacroLookup &macros;
    const char introducer;
    const MacroValues::Limits &limits;
    std::string &result;
    std::size_t longest = 0;
    std::uint64_t cost = 0;  ///< in picoseconds
    bool rescan = false;
    std::string builtinValue;

    /// Of the pass's text, once an unterminated reference was met: per character whether it is an
    /// opening parenthesis that nothing closes, and the places that were found last.
    std::vector<bool> unclosed;
    std::size_t nextIntroducer = 0;
    std::size_t nextColon = 0;
};

void Expansion::runPass(std::string_view text)
{
    rescan = false;
    unclosed.clear();
    cost += price::pass + price::characterPassed * text.size();
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t found = text.find(introducer, position);
        append(text.substr(position, found - position));
        if (found == std::string_view::npos)
            return;
        cost += price::introducer;
        position = found + 1;
        if (position < text.size() && text[position] == '(')
            position = passReference(text, position + 1);
        else
            append(text.substr(found, 1));
    }
}

/// Replaces the reference whose parenthesis is before \a start. Returns where the scan goes on.
std::size_t Expansion::passReference(std::string_view text, std::size_t start)
{
    Reference reference{start};
    if (findEnd(text, &reference)) {
        substitute(text, reference);
        return reference.end + 1;
    }
    heedUnclosed(text, start);
    return start - 1;
}

/// Finds the parenthesis that balances the one before the reference's start, and what is between
/// them.
bool Expansion::findEnd(std::string_view text, Reference *reference)
{
    const std::size_t start = reference->start;
    if (!unclosed.empty() && unclosed[start - 1])
        return false;
    std::size_t depth = 1;
    for (std::size_t i = start; i < text.size(); ++i) {
        const char c = text[i];
        if (c == ')' && --depth == 0) {
            reference->end = i;
            cost += price::characterInReference * (i - start);
            return true;
        }
        depth += c == '(';
        if (c == ':' && reference->colon == std::string_view::npos)
            reference->colon = i;
        reference->isNested = reference->isNested || c == introducer;
    }
    noteUnclosed(text, start - 1);
    return false;
}

void Expansion::noteUnclosed(std::string_view text, std::size_t from)
{
    assert(unclosed.empty());
    unclosed.assign(text.size(), false);
    nextIntroducer = from;
    nextColon = from;
    std::size_t closing = 0;
    for (std::size_t i = text.size(); i-- > from;) {
        if (text[i] == ')')
            ++closing;
        else if (text[i] == '(' && closing > 0)
            --closing;
        else if (text[i] == '(')
            unclosed[i] = true;
    }
    cost += price::characterNoted * (text.size() - from);
}

/// Lets the rest of the text from \a start on have its opinion about another pass.
void Expansion::heedUnclosed(std::string_view text, std::size_t start)
{
    cost += price::unclosed;
    const auto isAhead = [&](std::size_t *place, char wanted) {
        if (*place < start)
            *place = std::min(text.find(wanted, start), text.size());
        return *place < text.size();
    };
    if (isAhead(&nextIntroducer, introducer))
        rescan = true;
    if (isAhead(&nextColon, ':') && text.substr(nextColon).starts_with("::"))
        rescan = false;
}

/// Appends what \a reference stands for.
void Expansion::substitute(std::string_view text, const Reference &reference)
{
    const auto [start, end, colon, isNested] = reference;
    rescan = rescan || isNested;
    std::string_view name = text.substr(start, end - start);
    std::string_view value = text.substr(start - 2, end + 3 - start);
    if (colon != std::string_view::npos) {
        name = text.substr(start, colon - start);
        value = text.substr(colon + 1, end - colon - 1);
        if (value.starts_with(':')) {
            value.remove_prefix(1);
            rescan = false;
        }
    }
    lookUp(name, &value);
    append(value);
}

/// Leaves *value as it is when there is no macro of that name.
void Expansion::lookUp(std::string_view name, std::string_view *value)
{
    cost += price::reference;
    std::string_view found;
    if (!macros.find(name, &found))
        return;
    *value = found;
    const bool canBeBuiltin = name.starts_with('D') || name.starts_with('T');
    if (canBeBuiltin && builtinMacroValue(name, builtinValue)) {
        *value = builtinValue;
        cost += price::dateOrTime;
    }
}

void Expansion::append(std::string_view piece)
{
    result.append(piece);
    cost += price::characterAppended * piece.size();
    if (result.size() > longest)
        throw std::bad_alloc();
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

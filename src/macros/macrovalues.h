#pragma once

#include "macromap.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The macros of the process and what is done with macros in general: reading lists of them and
/// replacing references to them. Nothing here fails, every text is a valid list and has an
/// expansion; only memory can run out (std::bad_alloc). One thread at a time.
class MacroValues
{
public:
    /// Holds the facts about the host, and the names of the date and time macros, whose values
    /// are computed when they are referenced.
    MacroValues();

    /// Defines a system macro, replacing any earlier value.
    void setSystemMacro(std::string_view name, std::string_view value)
    {
        systemMacros.insert_or_assign(std::string(name), value);
    }

    /// The items of a list as documents write it (see forEachListItem()). Nothing is trimmed. Empty
    /// items are dropped unless \a keepEmpty.
    static std::vector<std::string> splitMacroList(std::string_view text, bool keepEmpty);

    /// Defines what each item says (see nameAndValue()), later items winning.
    static MacroMap parseMacroList(const std::vector<std::string> &items);

    /// Sets *value to the current local date or time where \a name is one of these, else returns
    /// false. English month names, as the process never leaves the "C" locale.
    ///
    ///     Date      21 June 2011     Time        15:34:03
    ///     DateYear  2011             TimeHour    15
    ///     DateMonth 06               TimeMinute  34
    ///     DateDay   21               TimeSecond  03
    static bool readClock(std::string_view name, std::string *value);

    /// \a base with every entry of \a overrides set on it.
    static MacroMap mergeMacros(const MacroMap &base, const MacroMap &overrides);

    /// \a text with its macro references replaced:
    ///
    ///     $(name)            the value; the reference as written when there is none
    ///     $(name:default)    the value, else the default
    ///     $(name::default)   the same, and the pass asks for no further one
    ///
    /// A reference ends at the parenthesis that balances its own. Names are looked up as they
    /// are written, first in \a macros and then, with \a useSystemMacros, in the system macros;
    /// a date or time name that is found gives the current date or time instead of its value.
    /// A pass that met the introducer inside a reference is followed by another one over its
    /// whole result. That ends when a pass reproduces its input, after 1,000 passes, or once
    /// 64 Mi characters were scanned again.
    ///
    /// A result that grows past 64 Mi characters, and past the text, throws std::bad_alloc.
    std::string expandMacros(const MacroMap &macros, std::string_view text,
                             bool useSystemMacros) const;

    /// *result receives the expansion; returns what it cost, in steps of about a nanosecond.
    /// \a text must not lie in *result.
    std::uint64_t expand(MacroLookup &macros, std::string_view text, std::string *result) const;
    /// expand() for most texts, at less than half of the cost: into memory of the caller's. Returns
    /// how many bytes of \a room it has used, or notPlain where a reference holds another one or a
    /// parenthesis, is not closed, or may be a date, and where the room does not suffice. Adds to
    /// *steps in any case. Macros are looked up in the order of their references, with what stands
    /// for one that there is not in *value.
    std::size_t expandPlain(MacroLookup &macros, std::string_view text, std::span<char> room,
                            std::uint64_t *steps) const;
    static constexpr std::size_t notPlain = SIZE_MAX;

    /// What bounds an expansion.
    struct Limits {
        int passes = 1000;
        std::size_t rescanned = std::size_t{64} << 20;  ///< characters, of all further passes
        std::size_t length = std::size_t{64} << 20;     ///< characters, unless the text has more
    };

    MacroMap systemMacros;       ///< changed by setSystemMacro() only
    char macroIntroducer = '$';  ///< never changed
    Limits limits;
};

/// The one MacroValues of the process: there before main() is entered, changed only by main().
extern MacroValues globalMacros;

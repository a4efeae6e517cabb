#pragma once

#include "macroscopes.h"
#include "pool.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

/// What a document may ask of the walk. Beyond a bound the run ends in an error that names it.
struct Limits {
    /// Elements nested in each other, those of included files and fragments counted where they
    /// stand. The default takes less than a quarter of a stack of 8 MiB.
    int nestedLevels = 5000;
    int nestedIncludes = 200;
    /// Of expressions, see ExpressionParser::maximumDepth. The default takes a mebibyte of stack.
    int expressionDepth = 4000;
    /// Rounds of one <for>, combinations of one <foreach>.
    unsigned loopRounds = 10'000'000;
    /// Bytes that directives bring into the document's pool: copies, expanded values, included
    /// trees; and those that macros take.
    std::size_t growth = std::size_t{1} << 30;
    /// Steps of a tenth of a nanosecond, beyond Price::DocumentByte for every byte of the document.
    /// Copies share their text, so that a small document can have a large expression evaluated
    /// again and again without growing.
    std::uint64_t work = 800'000'000'000;

    /// Takes the bounds on nesting down to what a stack of \a bytes holds twice over; no change
    /// from 8 MiB on.
    void fitStack(std::uint64_t bytes);
};

namespace directive
{

/// What is done over and over, and what it costs in steps. Each price is what was measured, and
/// with it a document is stopped after half a minute to three minutes of real work, whatever it
/// consists of: the price of a kind of work may be off by a factor of two, not more. Where cost
/// goes by characters in one text and by items in another, both have a price.
enum class Price : std::uint32_t {
    Nanosecond = 10,      ///< for what tells its cost itself
    NameCharacter = 2,    ///< of a name looked up
    Line = 20,            ///< 64 characters searched, compared or copied
    EmptyPiece = 20,      ///< of a list, between two separators
    Alternative = 80,     ///< cut from its list and compared
    ListItem = 120,       ///< of a foreach
    List = 1'300,         ///< the same
    InheritedName = 250,  ///< looked up on both elements
    IndexedName = 1'200,  ///< of an attribute, for those that are inherited
    Include = 34'000,     ///< a file found, opened, read and closed
    PathPart = 500,       ///< of its name
    IncludedByte = 28,    ///< of the pool, for what was read
    CountedRound = 4,     ///< of a loop whose rounds cannot be computed
    FragmentPiece = 50,   ///< of a value, put together from literal text and macros
    SharedByte = 10,      ///< of text that is written for one more copy
    DocumentByte = 300,   ///< what each byte of the document adds to the bound
};

/// What a walk has left to spend of its limits on growth and work.
class Budget
{
public:
    /// Growth is that of \a target from here on, whether it is still held or was released, and that
    /// of \a scopes, as far as it is held. All must outlive this object.
    Budget(const Limits &atMost, const Pool &target, const MacroScopes &scopes);

    /// Tells that \a taken bytes are no growth but what it took to read the document, which has become
    /// \a added bytes larger.
    void exclude(std::size_t taken, std::size_t added)
    {
        bytesExcluded += taken;
        workAtMost += static_cast<std::uint64_t>(Price::DocumentByte) * added;
    }

    void spend(Price price, std::uint64_t amount)
    {
        work += static_cast<std::uint64_t>(price) * amount;
    }

    /// spend() for text that is searched, compared or copied.
    void spendText(std::size_t characters) { spend(Price::Line, characters / 64); }

    bool isSpent() const { return growth() > limits.growth || work > workAtMost; }

    /// How much can still be had at \a price.
    std::uint64_t left(Price price) const
    {
        return isSpent() ? 0 : (workAtMost - work) / static_cast<std::uint64_t>(price);
    }

    /// Bytes that directives may still bring in.
    std::size_t growthLeft() const { return limits.growth - std::min(growth(), limits.growth); }

    /// What a spent budget was spent on, for an error.
    std::string message() const;
    std::string growthMessage() const;

private:
    std::size_t growth() const { return pool.bytesUsed() + macros.bytesUsed() - bytesExcluded; }

    const Limits &limits;
    const Pool &pool;
    const MacroScopes &macros;
    std::size_t bytesExcluded = 0;
    std::uint64_t workAtMost;
    std::uint64_t work = 0;
};

}  // namespace directive

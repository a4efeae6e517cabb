#pragma once

#include "macromap.h"
#include "namehash.h"

#include <cassert>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The macros of levels that lie in each other: what a level defines is seen on the levels in it
/// and gone when it is left. Nothing here fails; memory that cannot be had throws std::bad_alloc.
///
/// There is one table for all levels, which holds for each name what the innermost level that
/// knows it says. Beside it stands a log of what to put back: the first time that a level changes
/// a macro, what the level around it had made of it moves into the log, and on leaving the level
/// the log is gone through from its newest entry down to where the level began. So a look-up is
/// one look-up however deep the levels are, a level costs what it defines and nothing else, and
/// redefining a macro on its own level overwrites a value that nobody can ask for again. A name
/// that is undone to "not defined" keeps its place in the table, so that the log can point into
/// it, and since bodies that define it tend to come again.
class MacroScopes : public MacroLookup
{
public:
    /// The outermost level is \a outermostLevel, which must outlive this object and receives what
    /// is defined there.
    explicit MacroScopes(MacroMap *outermostLevel);
    MacroScopes(const MacroScopes &) = delete;
    MacroScopes &operator=(const MacroScopes &) = delete;

    /// A level in the one that is innermost. Levels are left in the opposite order.
    class Scope
    {
    public:
        explicit Scope(MacroScopes *target)
            : scopes(*target),
              depth(++scopes.depth),
              changesBefore(scopes.changes.size())
        {
        }
        ~Scope()
        {
            assert(scopes.depth == depth);
            scopes.leave(changesBefore);
        }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        MacroScopes &scopes;
        int depth;
        std::size_t changesBefore;
    };

    bool contains(std::string_view name) const
    {
        const auto found = macros.find(name);
        return found != macros.end() && found->second.isDefined;
    }

    bool find(std::string_view name, std::string_view *value) override;

    /// Defines a macro on the innermost level, whether there was one of that name or not. Neither
    /// text may be a value that find() gave.
    void set(std::string_view name, std::string_view value);

    /// Defines the items of \a list (see MacroValues::splitMacroList() and parseMacroList()) on the
    /// innermost level. Newlines in it do not count.
    void setList(std::string_view list);

private:
    struct Macro {
        std::string value;
        bool isDefined = false;
        int depth = 0;  ///< of the level that defined it
    };
    struct Change {
        Macro *macro;
        Macro before;
    };

    void leave(std::size_t changesBefore);

    MacroMap &outermost;
    std::unordered_map<std::string, Macro, NameHash, std::equal_to<>> macros;
    std::vector<Change> changes;
    int depth = 0;
};

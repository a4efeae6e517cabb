#pragma once

#include "macromap.h"
#include "namehash.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The macros of levels that lie in each other: what a level defines is seen on the levels in it
/// and gone when it is left. There is one table for all of them, and a log of what to put back, so
/// a level costs what it defines and nothing else. Nothing here fails; memory that cannot be had
/// throws std::bad_alloc.
class MacroScopes : public MacroLookup
{
public:
    /// The outermost level is \a outermostLevel, which must outlive this object.
    explicit MacroScopes(MacroMap *outermostLevel);
    MacroScopes(const MacroScopes &) = delete;
    MacroScopes &operator=(const MacroScopes &) = delete;

    /// A level in the one that is innermost. Levels are left in the opposite order.
    class Scope
    {
    public:
        explicit Scope(MacroScopes *target) : scopes(*target), changesBefore(scopes.changes.size())
        {
            ++scopes.depth;
        }
        ~Scope() { scopes.leave(changesBefore); }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        MacroScopes &scopes;
        std::size_t changesBefore;
    };

    bool contains(std::string_view name) const
    {
        const auto found = macros.find(name);
        return found != macros.end() && found->second.isDefined;
    }

    Lookup findLatin1(std::string_view name, std::string_view *value) override;
    const QString *find(const QString &name) override;

    /// Defines a macro on the innermost level, whether there was one of that name or not.
    void set(std::string_view name, std::string_view value);

    /// Defines the items of \a list (Latin-1, see MacroValues::splitMacroList() and
    /// parseMacroList()) on the innermost level. Newlines in it do not count.
    void setList(std::string_view list);

private:
    struct Macro {
        std::string value;
        bool isDefined = false;
        bool isWide = false;  ///< the value is not in Latin-1, and only in the outermost map
        int depth = 0;        ///< of the level that defined it
    };
    struct Change {
        Macro *macro;
        Macro before;
    };

    void leave(std::size_t changesBefore);

    MacroMap &outermost;
    /// By Latin-1 name. What is no longer defined keeps its entry, for the next time.
    std::unordered_map<std::string, Macro, NameHash, std::equal_to<>> macros;
    std::vector<Change> changes;  ///< those that have to be undone, the newest last
    int depth = 0;
};

#pragma once

#include "macromap.h"
#include "namehash.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

/// The macros of levels that lie in each other: what a level defines is seen on the levels in it
/// and gone when it is left. Nothing here fails; memory that cannot be had throws std::bad_alloc.
///
/// There is one table for all levels, which holds for each name what the innermost level that
/// knows it says, and a log of what to put back: the first time that a level changes a macro, what
/// it was goes into the log, and leaving the level undoes its part of the log, the newest entry
/// first. So a look-up is one look-up however deep the levels are, and a level costs what it defines.
/// The values are a stack of text that grows and shrinks with the log; redefining a macro on its own
/// level overwrites a value that nobody can ask for again, or, where that is too short, takes twice
/// its room. A name that is undone to "not defined" keeps its place in the table: the log can point
/// there, and bodies that define it tend to come again.
class MacroScopes final : public MacroLookup
{
public:
    struct Value {
        std::size_t start = 0;  ///< in the text
        std::size_t length = 0;
        std::size_t room = 0;  ///< bytes from the start that are free for this value
        int depth = 0;         ///< of the level that defined it
        bool isDefined = false;
    };
    struct Macro {
        NameKey key;
        std::string name;
        Value value = {};
    };

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
              changesBefore(scopes.changes.size()),
              textBefore(scopes.text.size())
        {
            ++scopes.depth;
        }
        ~Scope()
        {
            std::vector<Change> &log = scopes.changes;
            assert(log.size() >= changesBefore && scopes.text.size() >= textBefore);
            for (; log.size() > changesBefore; log.pop_back())
                log.back().macro->value = log.back().before;
            scopes.text.resize(textBefore);
            --scopes.depth;
        }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        MacroScopes &scopes;
        std::size_t changesBefore;
        std::size_t textBefore;
    };

    bool contains(std::string_view name) const { return defined(name); }
    bool find(std::string_view name, std::string_view *value) override
    {
        const Macro *macro = defined(name);
        return macro && get(*macro, value);
    }

    /// The macro of that name, whether it is defined or not, for who asks for it again and again. It
    /// stays where it is as long as this object.
    const Macro *place(std::string_view name) { return &findOrAdd(name); }
    /// find() for a macro whose place is known.
    bool get(const Macro &macro, std::string_view *value) const
    {
        if (macro.value.isDefined)
            *value = {text.data() + macro.value.start, macro.value.length};
        return macro.value.isDefined;
    }

    /// Defines a macro on the innermost level, whether there was one of that name or not. \a newValue
    /// may not be one that find() gave.
    void set(std::string_view name, std::string_view newValue);

    /// Defines the items of \a list (see MacroValues::splitMacroList() and parseMacroList()) on the
    /// innermost level. Newlines in it do not count. Returns what that cost, in steps of about a
    /// nanosecond.
    std::uint64_t setList(std::string_view list);

    /// About the memory that all macros take, those included that an inner level hides.
    std::size_t bytesUsed() const
    {
        return text.size() + macros.size() * sizeof(Macro) + changes.size() * sizeof(Change);
    }

private:
    struct Change {
        Macro *macro;
        Value before;
    };

    /// The cell of the macro of that name, or the free one that it would have.
    std::size_t cellOf(const NameKey &key, std::string_view name) const
    {
        const std::size_t mask = cells.size() - 1;
        for (std::size_t cell = key.hash() & mask;; cell = (cell + 1) & mask) {
            const Macro *macro = cells[cell];
            if (!macro || (macro->key == key && (key.isName() || macro->name == name)))
                return cell;
        }
    }
    const Macro *defined(std::string_view name) const
    {
        const Macro *macro = cells[cellOf(NameKey(name), name)];
        return macro && macro->value.isDefined ? macro : nullptr;
    }
    Macro &findOrAdd(std::string_view name);
    void define(std::string_view name, std::string_view newValue);

    MacroMap &outermost;
    std::deque<Macro> macros;
    std::vector<Macro *> cells;  ///< the macros by the hash of their names, at most a quarter full
    std::vector<Change> changes;
    std::string text;
    int depth = 0;
};

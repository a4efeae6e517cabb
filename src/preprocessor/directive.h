#pragma once

#include "macroscopes.h"
#include "xmlnode.h"

#include <cassert>
#include <memory>
#include <string_view>

/// What the walk and the directives tell each other. A directive is a free function: it is given
/// its element, where that stands, and what it may use (Run); it changes no link and returns an
/// Outcome, which the walk carries out.
namespace directive
{

class Run;

/// Where a chain of siblings stands.
struct Level {
    const std::string_view fileName;  ///< the file that holds it, as it was named
    const bool expand;                ///< whether attribute values are expanded
    const int includes;               ///< how many includes it is nested in
};

/// A level of its own for what \a directive brings from elsewhere, an included file or a fragment:
/// \a outer, with the macros that the directive adds in force as long as it lives.
struct Content {
    Content(Run *run, const XMLElement &directive, const Level &outer);

    MacroScopes::Scope macros;
    Level level;
};

/// A chain of siblings under construction, which is linked to nothing yet.
struct Chain {
    XMLNode *parent;  ///< the parent that its nodes are given
    XMLNode *first = nullptr;
    XMLNode *last = nullptr;

    void append(XMLNode *node)
    {
        assert(!node->nextSibling);
        node->parent = parent;
        (last ? last->nextSibling : first) = node;
        last = node;
    }

    /// The chain with \a next behind it.
    XMLNode *endWith(XMLNode *next) const
    {
        if (!last)
            return next;
        last->nextSibling = next;
        return first;
    }
};

/// The rounds of a loop, of which the walk makes one after the other.
class Rounds
{
public:
    virtual ~Rounds() = default;

    /// Appends the copies that the next round consists of, fewer where a bound is passed on the way.
    /// False when it was the last one.
    virtual bool make(Run &run, Chain *copies) = 0;

    unsigned count = 0;  ///< how many there are
};

/// What becomes of a directive's element.
struct Outcome {
    enum class Action : unsigned char {
        Keep,     ///< it stays, and its children are walked, as any other element's
        Remove,   ///< it goes with all below it
        Unwrap,   ///< the children of \a node are put in its place and walked there
        Branch,   ///< all its children are walked; those of its child \a node are put in its place
        Replace,  ///< \a node is put in its place; only the children of that are walked
        Repeat,   ///< what \a rounds make is put in its place and walked there, on its own level
        Insert,   ///< \a copies are put in its place; there is nothing to be walked in them
    };

    Action action = Action::Keep;
    XMLElement *node = nullptr;
    /// Where the children of \a node are walked; null: on the element's level, with macros of
    /// their own.
    std::unique_ptr<Content> content = nullptr;
    Chain copies = {nullptr};
    std::unique_ptr<Rounds> rounds = nullptr;

    static Outcome keep() { return {}; }
    static Outcome remove() { return {Action::Remove}; }
    static Outcome unwrapIf(bool condition, XMLElement &element)
    {
        return condition ? Outcome{Action::Unwrap, &element} : remove();
    }
};

using Handler = Outcome(Run &, XMLElement &, const Level &);

/// What executes the elements of that name; null when they are no directives.
Handler *findDirective(const char *name);

}  // namespace directive

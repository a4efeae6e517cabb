#pragma once

#include "budget.h"
#include "directive.h"
#include "macroscopes.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace directive
{

/// A fragment that was read once to be copied often, with the values of its attributes cut into
/// literal text and macros. A copy is a loop over its nodes in which nothing is looked up or
/// searched for, and it need not be walked.
///
/// That is for fragments without directives, where all macros are the same from the first node to
/// the last, and with plain references (MacroValues::expandPlain()). What the walk does besides, a
/// copy leaves out, so it is not for where one could tell: where the walk would go too deep, which
/// it then reports, and where elements come with children, as those of a subclass can.
///
/// The nodes are in the order of their levels. So a parent is copied before its children, siblings
/// lie side by side, the last node is one of the deepest, and reading a fragment takes no stack.
class FragmentTemplate : private MacroLookup
{
public:
    /// \a fragment and \a scopes must outlive this object, and the fragment stay as it is.
    FragmentTemplate(const XMLElement &fragment, MacroScopes *scopes);

    /// Whether copies are to be had for where the walk is.
    bool fits(const Run &run) const;

    /// Appends to *copies what the fragment's children become with the macros in force; less where
    /// the budget is spent before. False where they must be copied and walked after all.
    bool copy(Run *run, Chain *copies);

private:
    struct Node {
        const XMLNode *source;
        std::size_t parent;  ///< its place in the nodes
        int level;           ///< how many levels the walk would enter for it
        std::size_t piecesEnd;
        XMLNode *copy;
    };
    /// A part of a value: literal text and the reference behind it. The last one has no macro, and the
    /// whole value instead of a default.
    struct Piece {
        std::size_t attribute;  ///< its place in the element
        std::string_view literal;
        const MacroScopes::Macro *macro;
        std::string_view fallback;
    };

    bool add(const XMLNode &source, std::size_t parent);
    bool cut(std::size_t attribute, std::string_view value);
    bool find(std::string_view name, std::string_view *value) override;
    const Piece *expandValue(const Piece *piece, XMLElement *copy, Budget *budget);

    MacroScopes &macros;
    std::vector<Node> nodes;  ///< the fragment itself first; empty where it cannot be copied here
    std::vector<Piece> pieces;
    std::string text;  ///< of one value; a member so that its memory is used again
};

}  // namespace directive

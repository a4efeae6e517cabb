#pragma once

#include "budget.h"
#include "directive.h"
#include "macroscopes.h"
#include "xmldocument.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace directive
{

/// A fragment that was read once to be copied often, with the values of its attributes cut into
/// literal text and the places of macros. A copy is a loop over its nodes that leaves nothing to be
/// walked; nothing is looked up or searched for in it.
///
/// That holds for fragments without directives, where all macros are the same from the first node
/// to the last, and whose references are plain (MacroValues::cut()). It leaves out what the walk
/// does besides, which is why a copy is declined wherever one could tell: where the walk might meet
/// a bound, which then ends it there with the message that it has for that, and where elements come
/// with attributes or children of their own, as a subclass of the document can make them.
///
/// The nodes are in the order of their levels. So a parent is copied before its children, siblings
/// lie side by side, the last node is one of the deepest, and reading a fragment takes no stack.
class FragmentTemplate
{
public:
    /// \a fragment and \a scopes must outlive this object, and the fragment stay as it is.
    FragmentTemplate(const XMLElement &fragment, MacroScopes *scopes);

    /// Appends to *copies what the fragment's children become with the macros in force. False where
    /// they must be copied and walked; what is in *copies is of no use then.
    bool copy(Run *run, Chain *copies);

private:
    struct Node {
        const XMLNode *source;
        std::size_t parent;  ///< its place in the nodes
        int level;           ///< levels that the walk would enter for it
        std::size_t valuesEnd;
    };
    /// The value of an attribute that holds references.
    struct Value {
        std::size_t attribute;  ///< its place in the element
        std::size_t piecesEnd;
        std::size_t start;  ///< in the text; unchanged where the value is its own expansion
    };
    struct Piece {
        std::string_view literal;
        const MacroScopes::Macro *macro;  ///< null behind the last reference of a value
        std::string_view fallback;
    };
    static constexpr std::size_t unchanged = SIZE_MAX;

    bool add(const XMLNode &source, std::size_t parent);
    bool addValues(const XMLElement &element);
    bool expandValues(Budget *budget, std::size_t most);
    XMLNode *copyNode(XMLDocument *document, std::size_t index, const char *expanded);

    MacroScopes &macros;
    std::vector<Node> nodes;  ///< the fragment itself first; empty where it cannot be copied here
    std::vector<Value> values;
    std::vector<Piece> pieces;

    // Of one copy. Members so that their memory is used again.
    std::string text;  ///< of all values, with a NUL behind each
    std::vector<XMLNode *> made;
};

}  // namespace directive

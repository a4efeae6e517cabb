#pragma once

#include "budget.h"
#include "directive.h"
#include "fragmenttemplate.h"
#include "macroscopes.h"
#include "simpleexpressionparser.h"
#include "xmlpp2.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace directive
{

/// What a directive may use: the document, the macros that are in force, the budget, and what all
/// of them need of the expressions and macro references in their attributes.
class Run
{
public:
    Run(XMLPP2 *target, MacroMap *outermostMacros);

    /// \a text with the macros in force in place of the references to them.
    std::string expanded(std::string_view text);

    /// The value of the expression \a text, as \a evaluate reads it.
    template <typename Value>
    Value evaluated(Value (SimpleExpressionParser::*evaluate)(const char *, bool *),
                    const std::string &text, bool *ok)
    {
        SimpleExpressionParser parser;
        parser.maximumDepth = limits.expressionDepth;
        const Value value = (parser.*evaluate)(text.c_str(), ok);
        budget.spend(Price::Nanosecond, parser.steps());
        if (document.readsExpressions)
            tellExpression(text, *ok ? nullptr : &parser);
        // It would have a value on a larger stack, and nothing may be lost for that.
        if (parser.wasTooDeep && limits.expressionDepth < Limits().expressionDepth)
            stopTooDeep(limits.expressionDepth);
        return value;
    }

    /// Expands the attribute values of \a element with the macros in force.
    void expandAttributes(XMLElement &element)
    {
        if (!element.isLiteral())
            budget.spend(Price::Nanosecond, document.expandAttributes(&element, macros));
    }

    /// A copy of \a source and the elements below it, their values expanded with \a lookup.
    XMLElement *copyExpanded(const XMLElement &source, MacroLookup &lookup);

    /// Defines the macros of \a directive that are for what it brings in. Returns whether attribute
    /// values are expanded there, where those on \a level are or not.
    bool addMacros(const XMLElement &directive, const Level &level);

    /// The level for what \a directive brings in: \a level, with the macros that it adds to those
    /// in force.
    std::unique_ptr<Content> contentFor(const XMLElement &directive, const Level &level);

    /// Hands "XmlPP::processConditionals(): " and \a message to the document's reportError().
    void report(const std::string &message);
    /// report() of an error that ends the walk, also where reportError() returns.
    void stop(const std::string &message);
    void stopTooDeep(int levels);
    bool isStopped() const { return stopped; }
    /// isStopped(), after the walk was ended if it has gone past a bound.
    bool stopPastBounds()
    {
        if (!stopped && budget.isSpent())
            stop(budget.message());
        return stopped;
    }

    XMLPP2 &document;
    const Limits &limits;
    MacroScopes macros;
    Budget budget;
    int depth = 1;  ///< levels of the tree as the walk met them, directives included

    struct Fragment {
        std::uint64_t text = 0;                      ///< see textOf()
        std::unique_ptr<FragmentTemplate> prepared;  ///< once it is put again
    };
    std::unordered_map<const XMLNode *, Fragment> fragments;  ///< that were put
    /// What templates may still be made of, in bytes of text. They take memory that no bound counts.
    std::uint64_t textToPrepare = std::uint64_t{1} << 20;
    std::size_t storedFragments = 0;    ///< how often one was stored
    std::uint64_t sharedText = 0;       ///< bytes that all copies of fragments share with these
    const XMLElement *const firstRoot;  ///< the document's root before the walk

private:
    /// Calls expressionRead(). Where the expression has failed, \a failed is what evaluated it.
    void tellExpression(const std::string &text, SimpleExpressionParser *failed);

    bool stopped = false;
};

/// The bytes of all names, values and texts of \a top and what is below it; once more than \a most
/// are found, that many.
std::uint64_t textOf(const XMLNode *top, std::uint64_t most);

/// Spends what writing the document takes. Copies share their text with what was copied, which
/// takes no memory, so that a small document could make an output without end. Only looks at the
/// document where all that was copied would be too much: directives can have removed most of it.
void chargeSharedText(Run &run);

/// The value of an attribute; empty when it has none.
inline std::string_view textOf(const XMLAttribute &attribute)
{
    return attribute.value ? attribute.value : "";
}

/// The value of the attribute of that name; empty when there is none, or it has no value.
inline std::string_view attributeText(const XMLElement &element, const char *name)
{
    const char *value = element.attribute(name);
    return value ? value : "";
}

}  // namespace directive

#pragma once

#include "directive.h"
#include "run.h"
#include "xmlwriter.h"

/// Thrown where a document cannot be done a piece at a time: see windows.h.
struct NeedsTree {
};

/// One walk over a document: it visits the elements in document order, a subtree before its
/// following siblings, and has those executed that are directives.
///
/// The walk stands on a link, the pointer that leads to a node: the document's root, a parent's
/// firstChild or a sibling's nextSibling. Through it a node is unlinked, or others are put in its
/// place, without a search for what is in front of it.
///
/// What a directive leaves is put into the chain first, in the directive's place, and walked then,
/// up to the node that followed the directive. So every node that the walk meets hangs where it
/// will stay, with the parent that it will keep, and is moved once, however many directives are
/// nested in each other. The macros that it defines there are forgotten when that node is
/// reached: scopes follow the directives that were there, not the chain that is left. Only copies of
/// a fragment that come expanded are passed over.
///
/// A switch alone has its children walked where they are, since directives in all its branches are
/// executed; only when the walk comes to the selected branch, what is in that is put in the place
/// of the switch, and walked there.
///
/// With an output, all that the walk is done with is written there at once, in the order of the
/// document, and nothing of it is needed any more. So a loop's rounds are made and walked one by one
/// there, and each is given back before the next; otherwise all are made before the first is walked.
///
/// The walk calls itself for what is below an element or came from a directive, so its depth is
/// bounded (Limits::nestedLevels). Once the run is stopped it returns without another change.
class Walk
{
public:
    /// Past this much text that copies share, there must be no output: see NeedsTree.
    static constexpr std::uint64_t mostSharedText = std::uint64_t{1} << 32;

    /// \a outputFile can be null.
    Walk(XMLPP2 *target, MacroMap *outermostMacros, XMLWriter *outputFile = nullptr)
        : run(target, outermostMacros),
          output(outputFile)
    {
    }

    /// Walks \a node and its following siblings.
    void walk(XMLNode *node, const directive::Level &level);

    // The same a piece at a time, for elements that are not there as a whole yet.

    /// What is done with an element, which is no directive, before its children. They are walked in a
    /// scope that the caller makes.
    void begin(XMLElement &element, const directive::Level &level);
    /// Walks children of the element that was begun last.
    void walkChildren(XMLNode *children, const directive::Level &level)
    {
        walkChain(&children, nullptr, level);
    }
    /// What is done with the element that was begun last, and has that \a name, behind its children.
    void end(const char *name);

    directive::Run run;

private:
    using Level = directive::Level;
    using Content = directive::Content;
    using Outcome = directive::Outcome;

    XMLNode **walkChain(XMLNode **link, const XMLNode *end, const Level &level);
    XMLNode **walkContent(XMLNode **link, const XMLNode *end, const Content *content,
                          const Level &level);
    XMLNode **walkBranches(XMLElement &selected, XMLNode **link, XMLElement &element,
                           const Level &level);
    bool enter();
    void finishRoot();

    XMLNode **carryOut(const Outcome &outcome, XMLNode **link, XMLElement &element,
                       const Level &level);
    XMLNode **keep(XMLElement &element, const Level &level);
    void stay(XMLElement &element, const Content *content, const Level &level);
    XMLNode **repeat(directive::Rounds *rounds, XMLNode **link, XMLElement &element,
                     const Level &level);
    XMLNode **put(XMLElement &source, XMLNode **link, XMLElement &element, const Content *content,
                  const Level &level);
    XMLNode **replace(XMLElement &replacement, XMLNode **link, XMLElement &element,
                      const Content &content);

    /// One loop that is walked round by round for so many levels that may be nested.
    static constexpr int levelsPerLoop = 50;

    XMLWriter *output;
    int loopsInside = 0;  ///< loops walked round by round, each in a round of the one before
};

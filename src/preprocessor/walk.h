#pragma once

#include "xmlpp2.h"

#include <memory>
#include <string>

/// A node whose children are about to take the place of another one. They are given their new
/// parent while they are walked and the end of their chain is kept, so that no splice walks the
/// chain again, however many of them are nested in each other.
struct Dissolving {
    const XMLNode *node;
    XMLNode *home;            ///< the new parent
    XMLNode **end = nullptr;  ///< the link at the end of the children; null until they are walked
};

/// Where a chain of siblings stands.
struct Level {
    const QString &fileName;           ///< the file that holds it, as it was named
    MacroMap &macros;                  ///< the level's own map
    bool expand;                       ///< whether attribute values are expanded
    int includes;                      ///< how many includes it is nested in
    Dissolving *dissolving = nullptr;  ///< what may be met among the chain's nodes or above them
    XMLNode *home = nullptr;           ///< the parent that the chain's nodes will have
};

/// A level that content from elsewhere, an included file or a fragment, brings with it.
struct Scope {
    QString fileName;
    MacroMap macros;
    bool expand;
    int includes;
};

/// A detached chain of siblings under construction.
struct Chain {
    XMLNode *first = nullptr;
    XMLNode *last = nullptr;

    void append(XMLNode *node)
    {
        (last ? last->nextSibling : first) = node;
        last = node;
    }
};

/// What becomes of a directive's element. Handlers only decide; the walk alone edits the tree.
struct Outcome {
    bool keep = true;                ///< false: unlinked with everything below it
    bool processChildren = true;     ///< its children are walked, on a level of their own
    XMLNode *replacement = nullptr;  ///< whose children, once walked, take the element's place
    XMLElement *standIn = nullptr;   ///< takes the element's place itself, before it is walked
    /// Where the children of what comes in the element's place are walked, instead of its own.
    std::unique_ptr<Scope> scope = nullptr;
    Chain following = {};  ///< put behind the element and walked next, on its level

    static Outcome ordinary() { return {}; }
    static Outcome remove() { return {.keep = false}; }
    static Outcome unwrapIf(bool condition, XMLElement &element)
    {
        return condition ? Outcome{.replacement = &element} : remove();
    }
};

/// One walk over a document: visits the elements in document order, a subtree before its
/// following siblings, and executes those that are directives. It holds the link that leads to
/// the node it stands on, so that unlinking and splicing never search a chain.
class Walk
{
public:
    explicit Walk(XMLPP2 *target);

    /// Walks \a node and its following siblings.
    void run(XMLNode *node, Level level);

private:
    using Handler = Outcome (Walk::*)(XMLElement &, Level &);
    struct Directive {
        const char *tag;
        Handler handler;
    };
    static const Directive directives[];
    static const Directive *findDirective(const char *tag);

    XMLNode **walkChain(XMLNode **link, Level &level);
    void walkChildren(XMLNode *parent, Level level);
    void walkOwnChildren(XMLElement &element, const Level &level, Dissolving *dissolving);
    void walkContent(XMLElement &element, const Outcome &outcome, Level &level,
                     Dissolving *dissolving);
    XMLNode **apply(XMLNode **link, XMLElement &element, const Outcome &outcome, Level &level);
    void checkRoot();

    Outcome handleIf(XMLElement &element, Level &level);
    Outcome handleIfnot(XMLElement &element, Level &level);
    Outcome handleIfex(XMLElement &element, Level &level);
    Outcome handleIfdef(XMLElement &element, Level &level);
    Outcome handleIfndef(XMLElement &element, Level &level);
    Outcome handleSwitch(XMLElement &element, Level &level);
    Outcome handleInclude(XMLElement &element, Level &level);
    Outcome handleDefine(XMLElement &element, Level &level);
    Outcome handleFor(XMLElement &element, Level &level);
    Outcome handleForeach(XMLElement &element, Level &level);
    Outcome handleXmldef(XMLElement &element, Level &level);
    Outcome handleXmlput(XMLElement &element, Level &level);

    Outcome unwrapByAttribute(XMLElement &element, Level &level, bool wanted);
    XMLElement *loadInclude(const QString &path);
    void readRounds(const XMLElement &element, const Level &level, class CountedRounds *rounds);
    Chain copyRounds(const XMLElement &loop, unsigned count, class LoopRounds *rounds);

    /// The value of a macro, which becomes defined as empty when it is not defined yet.
    static QString lookUpOrDefine(Level &level, const char *name);
    static std::string expanded(const Level &level, const char *text);
    static std::unique_ptr<Scope> contentScope(const XMLElement &directive, const Level &level,
                                               const QString &fileName);

    /// Hands "XmlPP::processConditionals(): " and \a message to reportError().
    void report(const QString &message);
    void reportAndStop(const QString &message);
    void reportGrowth();

    /// Ends the walk with an error when the document has grown too far. Whether the walk is to
    /// end, for that or for what was met before.
    bool stopIfGrownTooFar()
    {
        if (!stopped && document.bytesUsed() - bytesAtStart > limits.growth)
            reportGrowth();
        return stopped;
    }

    XMLPP2 &document;
    const Limits &limits;
    const XMLNode *const firstRoot;  ///< the document's root before the walk
    const std::size_t bytesAtStart;
    int depth = 1;
    bool stopped = false;  ///< a bound was met and its error returned
};

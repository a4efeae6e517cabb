#pragma once

#include "macroscopes.h"
#include "simpleexpressionparser.h"
#include "xmlpp2.h"

#include <cstdint>
#include <QString>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

/// A node whose children are about to take the place of another one. They are given their new
/// parent while they are walked and the end of their chain is kept, so that no splice walks the
/// chain again, however many of them are nested in each other.
struct Dissolving {
    const XMLNode *node;
    XMLNode *home;            ///< the new parent
    XMLNode **end = nullptr;  ///< the link at the end of the children; null until they are walked
};

/// The value of an attribute; empty when there is none, or it has no value.
inline const char *attributeText(const XMLElement &element, const char *name)
{
    const char *value = element.attribute(name);
    return value ? value : "";
}

/// Where a chain of siblings stands.
struct Level {
    const QString &fileName;           ///< the file that holds it, as it was named
    bool expand;                       ///< whether attribute values are expanded
    int includes;                      ///< how many includes it is nested in
    Dissolving *dissolving = nullptr;  ///< what may be met among the chain's nodes or above them
    XMLNode *home = nullptr;           ///< the parent that the chain's nodes will have
};

/// A level that content from elsewhere, an included file or a fragment, brings with it. Its macros
/// are in force as long as it lives.
struct Scope {
    Scope(MacroScopes *scopes, QString name, bool expands, int nestedIncludes)
        : macros(scopes),
          fileName(std::move(name)),
          expand(expands),
          includes(nestedIncludes)
    {
    }

    MacroScopes::Scope macros;
    QString fileName;
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
    Walk(XMLPP2 *target, MacroMap *outermostMacros);

    /// Walks \a node and its following siblings.
    void run(XMLNode *node, Level level);

private:
    using Handler = Outcome (Walk::*)(XMLElement &, const Level &);
    static Handler findHandler(const char *tag);

    XMLNode **walkChain(XMLNode **link, Level &level);
    void walkChildren(XMLNode *parent, Level level);
    void walkOwnChildren(XMLElement &element, const Level &level, Dissolving *dissolving);
    void walkContent(XMLElement &element, const Outcome &outcome, Level &level,
                     Dissolving *dissolving);
    XMLNode **apply(XMLNode **link, XMLElement &element, const Outcome &outcome, Level &level);
    void checkRoot();

    Outcome handleIf(XMLElement &element, const Level &level);
    Outcome handleIfnot(XMLElement &element, const Level &level);
    Outcome handleIfex(XMLElement &element, const Level &level);
    Outcome handleIfdef(XMLElement &element, const Level &level);
    Outcome handleIfndef(XMLElement &element, const Level &level);
    Outcome handleSwitch(XMLElement &element, const Level &level);
    Outcome handleInclude(XMLElement &element, const Level &level);
    Outcome handleDefine(XMLElement &element, const Level &level);
    Outcome handleFor(XMLElement &element, const Level &level);
    Outcome handleForeach(XMLElement &element, const Level &level);
    Outcome handleXmldef(XMLElement &element, const Level &level);
    Outcome handleXmlput(XMLElement &element, const Level &level);

    bool isDefined(const XMLElement &element) const;
    Outcome unwrapByAttribute(XMLElement &element, bool wanted);
    XMLElement *loadInclude(const QString &path);
    void readRounds(const XMLElement &element, class CountedRounds *rounds);
    Chain copyRounds(const XMLElement &loop, unsigned count, class LoopRounds *rounds);

    /// The value of a macro, which becomes defined as empty when it is not defined yet.
    std::string_view lookUpOrDefine(std::string_view name);
    std::string expanded(std::string_view text);
    /// The value of the expression \a text, as \a evaluate reads it.
    template <typename Value>
    Value evaluated(Value (SimpleExpressionParser::*evaluate)(const char *, bool *),
                    const std::string &text, bool *ok)
    {
        SimpleExpressionParser parser;
        const Value value = (parser.*evaluate)(text.c_str(), ok);
        work += stepsPerExpressionCharacter * text.size() + (*ok ? 0 : stepsPerFailure);
        return value;
    }
    std::unique_ptr<Scope> contentScope(const XMLElement &directive, const Level &level,
                                        const QString &fileName);

    /// Hands "XmlPP::processConditionals(): " and \a message to reportError().
    void report(const QString &message);
    void reportAndStop(const QString &message);
    void reportGrowth();
    void reportWork();

    /// What is done over and over is counted in steps of about a nanosecond.
    static constexpr std::uint64_t stepsPerByteRead = 128;
    static constexpr std::uint64_t stepsPerByteMade = 8;
    static constexpr std::uint64_t stepsPerByteShared = 2;
    static constexpr std::uint64_t stepsPerListCharacter = 32;
    static constexpr std::uint64_t stepsPerExpressionCharacter = 128;
    static constexpr std::uint64_t stepsPerFailure = 10000;
    static constexpr std::uint64_t stepsPerInclude = 12000;

    /// Ends the walk with an error when the document has grown too far or made too much work.
    /// Whether the walk is to end, for that or for what was met before.
    bool stopPastBounds()
    {
        if (stopped)
            return true;
        const std::size_t growth = document.bytesUsed() - bytesAtStart;
        if (growth > limits.growth)
            reportGrowth();
        else if (work > workAtMost + stepsPerByteMade * growth)
            reportWork();
        return stopped;
    }

    XMLPP2 &document;
    const Limits &limits;
    MacroScopes macros;
    const XMLNode *const firstRoot;  ///< the document's root before the walk
    const std::size_t bytesAtStart;
    std::uint64_t workAtMost;  ///< but for what the document grows
    std::uint64_t work = 0;    ///< but for that of expansions
    std::unordered_map<const XMLNode *, std::size_t> textOfFragments;
    std::set<QString> filesRead;
    int depth = 1;
    bool stopped = false;  ///< a bound was met and its error returned
};

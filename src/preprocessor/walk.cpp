#include "walk.h"

#include "macrovalues.h"

#include <cstdint>
#include <cstring>

namespace
{

/// A name as a number. Of names with less than eight characters no two have the same, nor has one
/// the same as a longer name.
constexpr std::uint64_t asNumber(const char *name)
{
    std::uint64_t number = 0;
    for (int length = 0; length < 8 && *name != '\0'; ++length)
        number = number << 8 | static_cast<unsigned char>(*name++);
    return number;
}

}  // namespace

/// What executes the elements of this name; null when they are no directives.
inline Walk::Handler Walk::findHandler(const char *tag)
{
    switch (asNumber(tag)) {
    case asNumber("if"):
        return &Walk::handleIf;
    case asNumber("ifnot"):
        return &Walk::handleIfnot;
    case asNumber("ifex"):
        return &Walk::handleIfex;
    case asNumber("ifdef"):
        return &Walk::handleIfdef;
    case asNumber("ifndef"):
        return &Walk::handleIfndef;
    case asNumber("switch"):
        return &Walk::handleSwitch;
    case asNumber("include"):
        return &Walk::handleInclude;
    case asNumber("define"):
        return &Walk::handleDefine;
    case asNumber("for"):
        return &Walk::handleFor;
    case asNumber("foreach"):
        return &Walk::handleForeach;
    case asNumber("xmldef"):
        return &Walk::handleXmldef;
    case asNumber("xmlput"):
        return &Walk::handleXmlput;
    default:
        return nullptr;
    }
}

Walk::Walk(XMLPP2 *target, MacroMap *outermostMacros)
    : document(*target),
      limits(target->limits),
      macros(outermostMacros),
      firstRoot(target->root),
      bytesAtStart(target->bytesUsed()),
      workAtMost(limits.work + stepsPerByteRead * bytesAtStart)
{
}

void Walk::run(XMLNode *node, Level level)
{
    level.home = node->parent;
    if (node == document.root) {
        walkChain(&document.root, level);
        checkRoot();
        return;
    }
    // Only here a link has to be searched for; the walk itself always knows it.
    XMLNode **link = node->parent ? &node->parent->firstChild : &node;
    while (*link != node)
        link = &(*link)->nextSibling;
    walkChain(link, level);
}

/// Returns the link at the end of the chain.
XMLNode **Walk::walkChain(XMLNode **link, Level &level)
{
    while (XMLNode *node = *link) {
        node->parent = level.home;
        if (node->kind() != XMLNode::Kind::Element || stopped) {
            link = &node->nextSibling;
            continue;
        }
        auto &element = static_cast<XMLElement &>(*node);
        if (level.expand)
            work += document.expandAttributes(&element, macros);
        if (const Handler handler = findHandler(element.name())) {
            const Outcome outcome = (this->*handler)(element, level);
            if (!stopPastBounds())
                link = apply(link, element, outcome, level);
        } else {
            if (!stopPastBounds())
                walkOwnChildren(element, level, level.dissolving);
            link = &element.nextSibling;
        }
    }
    return link;
}

/// Carries out what was decided about the element at \a link. Returns the link of the node that
/// is next.
XMLNode **Walk::apply(XMLNode **link, XMLElement &element, const Outcome &outcome, Level &level)
{
    if (outcome.standIn) {
        outcome.standIn->nextSibling = element.nextSibling;
        outcome.standIn->parent = element.parent;
        *link = outcome.standIn;
    }
    Dissolving dissolving{outcome.replacement, level.home};
    if (outcome.keep)
        walkContent(element, outcome, level, &dissolving);
    if (outcome.standIn || (outcome.keep && !outcome.replacement))
        return &(*link)->nextSibling;

    // The element goes; what it leaves in its place is behind the walk, what follows is not.
    *link = element.nextSibling;
    if (outcome.following.first) {
        outcome.following.last->nextSibling = *link;
        *link = outcome.following.first;
    }
    XMLNode *remains = outcome.replacement ? outcome.replacement->firstChild : nullptr;
    if (!remains)
        return link;
    if (!dissolving.end)
        dissolving.end = &adoptChain(level.home, remains, nullptr)->nextSibling;
    *dissolving.end = *link;
    *link = remains;
    return dissolving.end;
}

void Walk::walkContent(XMLElement &element, const Outcome &outcome, Level &level,
                       Dissolving *dissolving)
{
    if (outcome.scope) {
        Scope &scope = *outcome.scope;
        walkChildren(outcome.standIn ? outcome.standIn : outcome.replacement,
                     {scope.fileName, scope.expand, scope.includes, dissolving});
    } else if (outcome.processChildren) {
        walkOwnChildren(element, level, dissolving);
    }
}

void Walk::walkOwnChildren(XMLElement &element, const Level &level, Dissolving *dissolving)
{
    if (!element.firstChild)
        return;
    const MacroScopes::Scope scope(&macros);
    walkChildren(&element, {level.fileName, level.expand, level.includes, dissolving});
}

void Walk::walkChildren(XMLNode *parent, Level level)
{
    if (!parent->firstChild)
        return;
    if (depth >= limits.nestedLevels) {
        reportAndStop(QStringLiteral("nested more than %1 levels deep").arg(limits.nestedLevels));
        return;
    }
    const bool dissolves = level.dissolving && level.dissolving->node == parent;
    level.home = dissolves ? level.dissolving->home : parent;
    ++depth;
    XMLNode **end = walkChain(&parent->firstChild, level);
    --depth;
    if (dissolves)
        level.dissolving->end = end;
}

/// What a directive leaves in the root's place must be a document again.
void Walk::checkRoot()
{
    const XMLNode *root = document.root;
    if (root && !stopped && (root->nextSibling || root->kind() != XMLNode::Kind::Element))
        report(QStringLiteral("the document needs exactly one root element"));
}

std::string_view Walk::lookUpOrDefine(std::string_view name)
{
    std::string_view value;
    // Nothing in a document equals a value that is not in Latin-1, as nothing equals an empty one.
    if (!macros.find(name, &value))
        macros.set(name, "");
    return value;
}

/// \a text with the level's macros in it, for an expression that is about to be evaluated.
std::string Walk::expanded(std::string_view text)
{
    std::string result;
    work += globalMacros.expand(macros, text, &result);
    return result;
}

/// The level for what \a directive brings in, with the macros that it adds to the current ones.
std::unique_ptr<Scope> Walk::contentScope(const XMLElement &directive, const Level &level,
                                          const QString &fileName)
{
    auto scope = std::make_unique<Scope>(&macros, fileName, level.expand, level.includes);
    const bool takesMacros = level.expand || directive.hasAttribute("expand_macros");
    if (takesMacros && directive.hasAttribute("macros")) {
        const std::string_view items = attributeText(directive, "macros");
        macros.setList(items);
        work += stepsPerListCharacter * items.size();
        scope->expand = true;
    }
    return scope;
}

void Walk::report(const QString &message)
{
    document.reportError(QStringLiteral("XmlPP::processConditionals(): ") + message);
}

void Walk::reportAndStop(const QString &message)
{
    stopped = true;
    report(message);
}

void Walk::reportGrowth()
{
    reportAndStop(
        QStringLiteral("directives bring more than %1 bytes into the document").arg(limits.growth));
}

void Walk::reportWork()
{
    reportAndStop(QStringLiteral("directives make more than %1 steps of work").arg(limits.work));
}

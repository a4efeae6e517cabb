#include "walk.h"

#include <cassert>
#include <utility>

void Walk::walk(XMLNode *node, const Level &level)
{
    assert(node);
    if (node == run.document.root) {
        walkChain(&run.document.root, nullptr, level);
        finishRoot();
        return;
    }
    // Only here a link has to be searched for; the walk itself always stands on it.
    XMLNode **link = node->parent ? &node->parent->firstChild : &node;
    while (*link != node)
        link = &(*link)->nextSibling;
    walkChain(link, nullptr, level);
}

/// Walks the chain from \a link up to \a end, which is null for all of it. Returns the link that
/// leads to \a end.
XMLNode **Walk::walkChain(XMLNode **link, const XMLNode *end, const Level &level)
{
    while (*link != end && !run.isStopped()) {
        if ((*link)->kind() != XMLNode::Kind::Element) {
            if (output)
                output->writeInside(*link);
            link = &(*link)->nextSibling;
            continue;
        }
        auto &element = static_cast<XMLElement &>(**link);
        if (level.expand)
            run.expandAttributes(element);
        directive::Handler *const handler = directive::findDirective(element.name());
        if (!handler) {
            link = keep(element, level);
            continue;
        }
        run.document.executed = &element;
        link = carryOut(handler(run, element, level), link, element, level);
    }
    return link;
}

/// Does with \a element, to which \a link leads, what was decided. Returns the link of the node
/// that is next.
XMLNode **Walk::carryOut(const Outcome &outcome, XMLNode **link, XMLElement &element,
                         const Level &level)
{
    assert(*link == &element);
    if (run.stopPastBounds())
        return link;
    if (output && run.sharedText > mostSharedText)
        throw NeedsTree();
    switch (outcome.action) {
    case Outcome::Action::Keep:
        return keep(element, level);
    case Outcome::Action::Remove:
        *link = element.nextSibling;
        return link;
    case Outcome::Action::Unwrap:
        return put(*outcome.node, link, element, outcome.content.get(), level);
    case Outcome::Action::Branch:
        return walkBranches(*outcome.node, link, element, level);
    case Outcome::Action::Replace:
        return replace(*outcome.node, link, element, *outcome.content);
    case Outcome::Action::Repeat:
        return repeat(outcome.rounds.get(), link, element, level);
    case Outcome::Action::Insert:
        for (const XMLNode *copy = outcome.copies.first; copy && output; copy = copy->nextSibling)
            output->writeInside(copy);
        *link = outcome.copies.endWith(element.nextSibling);
        return outcome.copies.last ? &outcome.copies.last->nextSibling : link;
    }
    return link;
}

XMLNode **Walk::keep(XMLElement &element, const Level &level)
{
    // One without references has cost nothing since the last look.
    if (element.isLiteral() || !run.stopPastBounds())
        stay(element, nullptr, level);
    return &element.nextSibling;
}

/// Walks the children of \a element, which stays where it is. See walkContent().
void Walk::stay(XMLElement &element, const Content *content, const Level &level)
{
    if (output)
        output->beginElement(&element);
    walkContent(&element.firstChild, nullptr, content, level);
    if (output)
        output->endElement(element.name());
}

void Walk::begin(XMLElement &element, const Level &level)
{
    if (level.expand)
        run.expandAttributes(element);
    if (run.stopPastBounds() || !enter())
        return;
    if (output)
        output->beginElement(&element);
}

void Walk::end(const char *name)
{
    --run.depth;
    if (output)
        output->endElement(name);
}

/// Rounds are walked one by one while the copies are not too many to be brought in, and not too many
/// loops are being walked like that: each takes of the stack. From there on all are made first, as
/// without an output, and what is too much is found out before more is written.
XMLNode **Walk::repeat(directive::Rounds *rounds, XMLNode **link, XMLElement &element,
                       const Level &level)
{
    directive::Chain copies{element.parent};
    const std::size_t mostBytes = run.limits.growth / rounds->count;
    bool isOneByOne = output && loopsInside < run.limits.nestedLevels / levelsPerLoop;
    for (bool goesOn = true; goesOn && !run.isStopped();) {
        const Pool::Mark before = run.document.mark();
        const std::size_t bytesBefore = run.document.bytesUsed();
        const std::size_t fragmentsBefore = run.storedFragments;
        goesOn = rounds->make(run, &copies);
        const std::size_t bytes = run.document.bytesUsed() - bytesBefore;
        isOneByOne = isOneByOne && bytes <= mostBytes;
        if (isOneByOne) {
            ++loopsInside;
            walkChain(&copies.first, nullptr, level);
            --loopsInside;
            if (run.storedFragments == fragmentsBefore)
                run.document.release(before);
            copies = {element.parent};
        }
    }
    if (!run.isStopped())
        *link = copies.endWith(element.nextSibling);
    return link;
}

/// Puts the children of \a source in the place of \a element and walks them there.
XMLNode **Walk::put(XMLElement &source, XMLNode **link, XMLElement &element, const Content *content,
                    const Level &level)
{
    XMLNode *const end = element.nextSibling;
    *link = end;
    if (source.firstChild) {
        adoptChain(element.parent, source.firstChild, end);
        *link = source.firstChild;
    }
    return walkContent(link, end, content, level);
}

XMLNode **Walk::walkBranches(XMLElement &selected, XMLNode **link, XMLElement &element,
                             const Level &level)
{
    assert(selected.parent == &element);
    const MacroScopes::Scope scope(&run.macros);
    if (!enter())
        return link;
    XMLWriter *const outputOfSelected = std::exchange(output, nullptr);
    walkChain(&element.firstChild, &selected, level);
    output = outputOfSelected;
    if (level.expand)
        run.expandAttributes(selected);
    if (!run.stopPastBounds())
        link = put(selected, link, element, nullptr, level);
    output = nullptr;
    walkChain(&selected.nextSibling, nullptr, level);
    output = outputOfSelected;
    --run.depth;
    return link;
}

XMLNode **Walk::replace(XMLElement &replacement, XMLNode **link, XMLElement &element,
                        const Content &content)
{
    assert(!replacement.nextSibling && replacement.kind() == XMLNode::Kind::Element);
    replacement.parent = element.parent;
    replacement.nextSibling = element.nextSibling;
    *link = &replacement;
    stay(replacement, &content, content.level);
    return &replacement.nextSibling;
}

/// Walks from \a link up to \a end on the level of \a content, or else on \a level with macros of
/// their own.
XMLNode **Walk::walkContent(XMLNode **link, const XMLNode *end, const Content *content,
                            const Level &level)
{
    if (*link == end || !enter())
        return link;
    if (content) {
        link = walkChain(link, end, content->level);
    } else {
        const MacroScopes::Scope scope(&run.macros);
        link = walkChain(link, end, level);
    }
    --run.depth;
    return link;
}

/// Goes one level deeper; false, after an error was reported, where that is too deep.
bool Walk::enter()
{
    if (run.depth < run.limits.nestedLevels) {
        ++run.depth;
        return true;
    }
    run.stopTooDeep(run.limits.nestedLevels);
    return false;
}

/// What directives leave in the root's place must be a document again, and one that can be written.
void Walk::finishRoot()
{
    const XMLNode *root = run.document.root;
    directive::chargeSharedText(run);
    if (root && !run.stopPastBounds() &&
        (root->nextSibling || root->kind() != XMLNode::Kind::Element)) {
        run.document.executed = run.firstRoot;
        run.report("the document needs exactly one root element");
    }
}

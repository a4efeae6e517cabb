#pragma once

#include "xmlnode.h"

#include <vector>

/// Copies \a source and all below it with \a copyOne, which makes the copy of a single node, not
/// linked to anything, or returns null to leave out the node and all below it. Children that such
/// a copy comes with stay in front of the copied ones. Takes no more of the stack for a deep tree
/// than for a flat one.
template <typename CopyOne>
XMLNode *copySubtree(const XMLNode *source, CopyOne copyOne)
{
    struct Level {
        const XMLNode *next;  ///< the child of the source that is to be copied next
        XMLNode *parent;      ///< the copy of the source, to which the children are linked
        XMLNode **end;        ///< the link that the next child is to hang from
    };
    XMLNode *top = copyOne(source);
    std::vector<Level> levels;
    if (top && source->firstChild)
        levels.push_back({source->firstChild, top, top->childrenEnd()});
    while (!levels.empty()) {
        Level &level = levels.back();
        const XMLNode *node = level.next;
        if (!node) {
            levels.pop_back();
            continue;
        }
        level.next = node->nextSibling;
        if (XMLNode *copy = copyOne(node)) {
            copy->parent = level.parent;
            *level.end = copy;
            level.end = &copy->nextSibling;
            if (node->firstChild)
                levels.push_back({node->firstChild, copy, copy->childrenEnd()});
        }
    }
    return top;
}

#include "xmlnode.h"

#include <cstring>

namespace
{

/// The place in \a parent's chain that \a child hangs from; at the end it holds null.
XMLNode **findLink(XMLNode *parent, const XMLNode *child)
{
    XMLNode **link = &parent->firstChild;
    while (*link && *link != child)
        link = &(*link)->nextSibling;
    return link;
}

}  // namespace

XMLNode *adoptChain(XMLNode *newParent, XMLNode *chain, XMLNode *next)
{
    for (;; chain = chain->nextSibling) {
        chain->parent = newParent;
        if (!chain->nextSibling)
            break;
    }
    chain->nextSibling = next;
    return chain;
}

void XMLNode::appendChild(XMLNode *child)
{
    *findLink(this, nullptr) = child;
    child->parent = this;
}

void XMLNode::prependChild(XMLNode *child)
{
    child->nextSibling = firstChild;
    firstChild = child;
    child->parent = this;
}

void XMLNode::removeChild(XMLNode *child)
{
    XMLNode **link = findLink(this, child);
    if (*link)
        *link = child->nextSibling;
}

void XMLNode::replaceChild(XMLNode *oldChild, XMLNode *newChild)
{
    *findLink(this, oldChild) = newChild;
    newChild->nextSibling = oldChild->nextSibling;
    newChild->parent = oldChild->parent;
}

void XMLNode::insertAfter(XMLNode *refChild, XMLNode *chain)
{
    if (!firstChild) {
        firstChild = chain;
        if (chain)
            adoptChain(this, chain, nullptr);
        return;
    }
    XMLNode *next = refChild->nextSibling;
    refChild->nextSibling = chain;
    adoptChain(this, chain, next);
}

XMLAttribute *XMLElement::findAttribute(const char *name) const
{
    for (XMLAttribute &attribute : attributeList) {
        if (std::strcmp(attribute.name, name) == 0)
            return &attribute;
    }
    return nullptr;
}

void XMLElement::setAttribute(const char *name, const char *value)
{
    literal = false;
    if (XMLAttribute *attribute = findAttribute(name))
        attribute->value = value;
    else
        XMLAttributeAppender(&attributeList).append(name, value);
}

void XMLElement::removeAttribute(const char *name)
{
    for (XMLAttribute **link = &attributeList.first; *link; link = &(*link)->next) {
        if (std::strcmp((*link)->name, name) == 0) {
            *link = (*link)->next;
            return;
        }
    }
}

bool XMLElement::hasAttribute(const char *name) const
{
    return findAttribute(name) != nullptr;
}

const char *XMLElement::attribute(const char *name) const
{
    const XMLAttribute *found = findAttribute(name);
    return found ? found->value : nullptr;
}

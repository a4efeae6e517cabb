#include "xmlnode.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

XMLNode *adoptChain(XMLNode *newParent, XMLNode *chain, XMLNode *next)
{
    assert(chain);
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
    assert(child && !child->nextSibling);
    *childrenEnd() = child;
    child->parent = this;
}

void XMLNode::prependChild(XMLNode *child)
{
    assert(child);
    child->nextSibling = firstChild;
    firstChild = child;
    child->parent = this;
}

void XMLNode::removeChild(XMLNode *child)
{
    XMLNode **link = linkTo(child);
    if (*link)
        *link = child->nextSibling;
}

void XMLNode::replaceChild(XMLNode *oldChild, XMLNode *newChild)
{
    XMLNode **link = linkTo(oldChild);
    assert(newChild && *link);
    *link = newChild;
    newChild->nextSibling = oldChild->nextSibling;
    newChild->parent = oldChild->parent;
}

void XMLNode::insertAfter(XMLNode *refChild, XMLNode *chain)
{
    assert(!firstChild || (refChild && refChild->parent == this && chain));
    XMLNode **link = firstChild ? &refChild->nextSibling : &firstChild;
    if (chain)
        adoptChain(this, chain, *link);
    *link = chain;
}

void XMLElement::setLiteral()
{
    assert(std::ranges::none_of(std::as_const(*this).attributes(), [](const XMLAttribute &each) {
        return each.value && std::strchr(each.value, '$');
    }));
    literal = 1;
}

XMLAttribute *XMLElement::findAttribute(const char *name) const
{
    assert(name);
    for (XMLAttribute &each : std::span(firstAttribute, attributeCount)) {
        if (std::strcmp(each.name, name) == 0)
            return &each;
    }
    return nullptr;
}

void XMLElement::appendAttribute(const char *name, const char *value)
{
    literal = 0;
    const std::size_t count = attributeCount;
    if (count == attributeRoom(count)) {
        const std::span<XMLAttribute> before(firstAttribute, count);
        std::copy(before.begin(), before.end(), makeAttributes(count + 1).begin());
    } else {
        ++attributeCount;
    }
    firstAttribute[count] = {name, value};
}

void XMLElement::setAttribute(const char *name, const char *value)
{
    literal = 0;
    if (XMLAttribute *attribute = findAttribute(name))
        attribute->value = value;
    else
        appendAttribute(name, value);
}

void XMLElement::removeAttribute(const char *name)
{
    if (XMLAttribute *attribute = findAttribute(name)) {
        std::copy(attribute + 1, firstAttribute + attributeCount, attribute);
        --attributeCount;
    }
}

const char *XMLElement::attribute(const char *name) const
{
    const XMLAttribute *found = findAttribute(name);
    return found ? found->value : nullptr;
}

#pragma once

#include "pool.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <span>
#include <utility>

class XMLNode;

/// Makes \a newParent the parent of \a chain, which is not null, and all its following siblings,
/// links the last of them to \a next and returns it.
XMLNode *adoptChain(XMLNode *newParent, XMLNode *chain, XMLNode *next);

/// One node of a document. Its children are a singly linked chain in document order. Nodes live
/// in a pool and point to strings that somebody else keeps alive, as a rule in the same pool:
/// nothing here copies, allocates (but for the attributes) or frees. A broken precondition is
/// a bug in the caller.
class XMLNode : public PoolObject
{
public:
    enum class Kind : unsigned char { Other, Element, Data, Comment, CDATASection };

    /// A node of Kind::Other, as every class is that is none of those below.
    XMLNode() : XMLNode(Kind::Other) {}
    virtual ~XMLNode() = default;
    XMLNode(const XMLNode &) = delete;
    XMLNode &operator=(const XMLNode &) = delete;

    /// Links \a child, whose nextSibling must be null, behind the last child. Walks the chain.
    virtual void appendChild(XMLNode *child)
    {
        assert(child && !child->nextSibling);
        *childrenEnd() = child;
        child->parent = this;
    }
    virtual void prependChild(XMLNode *child)
    {
        assert(child);
        child->nextSibling = firstChild;
        firstChild = child;
        child->parent = this;
    }

    /// Unlinks \a child, which keeps its own links; clear its nextSibling before it is appended
    /// anywhere. Does nothing when it is no child of this node.
    virtual void removeChild(XMLNode *child)
    {
        XMLNode **link = linkTo(child);
        if (*link)
            *link = child->nextSibling;
    }

    /// Puts \a newChild where \a oldChild, which must be a child, hangs; \a oldChild keeps its
    /// own links.
    virtual void replaceChild(XMLNode *oldChild, XMLNode *newChild)
    {
        XMLNode **link = linkTo(oldChild);
        assert(newChild && *link);
        *link = newChild;
        newChild->nextSibling = oldChild->nextSibling;
        newChild->parent = oldChild->parent;
    }

    /// Links the whole sibling chain that starts at \a chain behind the child \a refChild. A
    /// node without children takes the chain, which can then be null, as its children and ignores
    /// \a refChild.
    virtual void insertAfter(XMLNode *refChild, XMLNode *chain)
    {
        assert(!firstChild || (refChild && refChild->parent == this && chain));
        XMLNode **link = firstChild ? &refChild->nextSibling : &firstChild;
        if (chain)
            adoptChain(this, chain, *link);
        *link = chain;
    }

    /// The link that the next child is to hang from. Walks the chain.
    XMLNode **childrenEnd() { return linkTo(nullptr); }

    Kind kind() const { return static_cast<Kind>(ownKind); }

    XMLNode *parent = nullptr;       ///< null for the root and for what is not linked
    XMLNode *nextSibling = nullptr;  ///< null at the end of the chain
    XMLNode *firstChild = nullptr;
    int line = 0;  ///< where its markup began, counted from 0; set by the reader only

protected:
    explicit XMLNode(Kind nodeKind) : ownKind(static_cast<std::uint32_t>(nodeKind) & 7) {}

    // In XMLElement, to which they belong, the last two would make every element 8 bytes larger.
    std::uint32_t ownKind : 3;
    std::uint32_t literal : 1 = 0;
    std::uint32_t attributeCount : 28 = 0;

private:
    /// The link that \a child hangs from; the one at the end, which holds null, when it is no child.
    XMLNode **linkTo(const XMLNode *child)
    {
        XMLNode **link = &firstChild;
        while (*link && *link != child)
            link = &(*link)->nextSibling;
        return link;
    }
};

inline XMLNode *adoptChain(XMLNode *newParent, XMLNode *chain, XMLNode *next)
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

/// A name and a value of an element. The value can be null: the attribute is there, its text is
/// empty.
struct XMLAttribute {
    const char *name;
    const char *value;
};

class XMLElement : public XMLNode
{
public:
    explicit XMLElement(const char *tagName) : XMLNode(Kind::Element), tag(tagName) {}

    virtual void setName(const char *name) { tag = name; }
    virtual const char *name() const { return tag; }

    /// Replaces the value of the first attribute of that name in its place, or appends one. The
    /// pointers are kept, not what they point to.
    virtual void setAttribute(const char *name, const char *value)
    {
        literal = 0;
        if (XMLAttribute *attribute = findAttribute(name))
            attribute->value = value;
        else
            appendAttribute(name, value);
    }

    /// Removes the first attribute of that name, if there is one.
    virtual void removeAttribute(const char *name)
    {
        if (XMLAttribute *attribute = findAttribute(name)) {
            std::copy(attribute + 1, firstAttribute + attributeCount, attribute);
            --attributeCount;
        }
    }
    virtual bool hasAttribute(const char *name) const { return findAttribute(name); }

    /// The value of the first attribute of that name. Null when there is none, and also when it
    /// has no value.
    virtual const char *attribute(const char *name) const
    {
        const XMLAttribute *found = findAttribute(name);
        return found ? found->value : nullptr;
    }
    /// In the order in which they were set; valid until one is added or removed.
    virtual std::span<XMLAttribute> attributes()
    {
        literal = 0;
        return {firstAttribute, attributeCount};
    }
    std::span<const XMLAttribute> attributes() const { return {firstAttribute, attributeCount}; }

    /// Adds an attribute without looking whether the name is there already. This and the next
    /// throw std::bad_alloc where there is no memory, or for 2^28 attributes.
    void appendAttribute(const char *name, const char *value)
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

    /// Gives the element \a count attributes, in the current pool, instead of those that it has.
    /// The caller sets what they are.
    std::span<XMLAttribute> makeAttributes(std::size_t count)
    {
        constexpr std::size_t mostAttributes = (std::size_t{1} << 28) - 1;
        if (count > mostAttributes)
            throw std::bad_alloc();
        firstAttribute = static_cast<XMLAttribute *>(
            Pool::allocateCurrent(attributeRoom(count) * sizeof(XMLAttribute)));
        attributeCount = static_cast<std::uint32_t>(count) & mostAttributes;
        return {firstAttribute, count};
    }

    /// Adds \a added, in which no name occurs twice. Returns whether they are all that there are now:
    /// an element of a subclass can come with some of its own, which then take over the values.
    bool addAttributes(std::span<const XMLAttribute> added)
    {
        if (attributeCount != 0) {
            for (const XMLAttribute &each : added)
                setAttribute(each.name, each.value);
            return false;
        }
        if (!added.empty()) {
            XMLAttribute *to = makeAttributes(added.size()).data();
            for (const XMLAttribute &each : added)
                *to++ = each;
        }
        return true;
    }

    /// Whether no attribute value holds a '$', as far as that is known: whoever sets the values
    /// can tell, and whatever could change an attribute makes it unknown.
    bool isLiteral() const { return literal != 0; }
    void setLiteral()
    {
        assert(
            std::ranges::none_of(std::as_const(*this).attributes(), [](const XMLAttribute &each) {
                return each.value && std::strchr(each.value, '$');
            }));
        literal = 1;
    }

private:
    XMLAttribute *findAttribute(const char *name) const
    {
        assert(name);
        for (XMLAttribute &each : std::span(firstAttribute, attributeCount)) {
            if (std::strcmp(each.name, name) == 0)
                return &each;
        }
        return nullptr;
    }
    /// For how many attributes there is memory in an element that has \a count: just those where
    /// they are few, as mostly, and else up to the next power of two, so that appending one by
    /// one stays linear.
    static std::size_t attributeRoom(std::size_t count)
    {
        return count <= 8 ? count : std::bit_ceil(count);
    }

    const char *tag;
    XMLAttribute *firstAttribute = nullptr;
};

/// What character data, comments and CDATA sections have in common: one text, which can be null
/// and is empty then.
class XMLText : public XMLNode
{
public:
    virtual void setData(const char *data) { text = data; }
    virtual const char *data() const { return text; }

protected:
    XMLText(Kind nodeKind, const char *data) : XMLNode(nodeKind), text(data) {}

private:
    const char *text;
};

template <XMLNode::Kind nodeKind>
class XMLTextNode : public XMLText
{
public:
    explicit XMLTextNode(const char *data) : XMLText(nodeKind, data) {}
};

/// Character data, its references decoded.
using XMLData = XMLTextNode<XMLNode::Kind::Data>;
/// The text between the delimiters of a comment.
using XMLComment = XMLTextNode<XMLNode::Kind::Comment>;
/// The text between the delimiters of a CDATA section, taken literally.
using XMLCDATASection = XMLTextNode<XMLNode::Kind::CDATASection>;

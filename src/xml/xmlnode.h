#pragma once

#include "pool.h"

#include <cstddef>
#include <iterator>

/// One node of a document. Its children are a singly linked chain in document order. Nodes live
/// in a pool and point to strings that somebody else keeps alive, as a rule in the same pool:
/// nothing here copies, allocates (but for attribute entries) or frees. A broken precondition is
/// a bug in the caller.
class XMLNode : public PoolObject
{
public:
    enum class Kind : unsigned char { Other, Element, Data, Comment, CDATASection };

    explicit XMLNode(Kind nodeKind = Kind::Other) : ownKind(nodeKind) {}
    virtual ~XMLNode() = default;
    XMLNode(const XMLNode &) = delete;
    XMLNode &operator=(const XMLNode &) = delete;

    /// Links \a child, whose nextSibling must be null, behind the last child. Walks the chain.
    virtual void appendChild(XMLNode *child);
    virtual void prependChild(XMLNode *child);

    /// Unlinks \a child, which keeps its own links; clear its nextSibling before it is appended
    /// anywhere. Does nothing when it is no child of this node.
    virtual void removeChild(XMLNode *child);

    /// Puts \a newChild where \a oldChild, which must be a child, hangs; \a oldChild keeps its
    /// own links.
    virtual void replaceChild(XMLNode *oldChild, XMLNode *newChild);

    /// Links the whole sibling chain that starts at \a chain behind the child \a refChild. A
    /// node without children takes the chain as its children and ignores \a refChild.
    virtual void insertAfter(XMLNode *refChild, XMLNode *chain);

    Kind kind() const { return ownKind; }

    XMLNode *parent = nullptr;       ///< null for the root and for what is not linked
    XMLNode *nextSibling = nullptr;  ///< null at the end of the chain
    XMLNode *firstChild = nullptr;
    int line = 0;  ///< where its markup began, counted from 0; set by the reader only

private:
    Kind ownKind;
};

/// Makes \a newParent the parent of \a chain and all its following siblings, links the last of
/// them to \a next and returns it.
XMLNode *adoptChain(XMLNode *newParent, XMLNode *chain, XMLNode *next);

/// A name and a value of an element. The value can be null: the attribute is there, its text is
/// empty.
struct XMLAttribute : PoolObject {
    XMLAttribute(const char *attributeName, const char *attributeValue)
        : name(attributeName),
          value(attributeValue)
    {
    }

    const char *name;
    const char *value;
    XMLAttribute *next = nullptr;
};

/// The attributes of an element in the order in which they were set.
class XMLAttributeList
{
public:
    class iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = XMLAttribute;
        using difference_type = std::ptrdiff_t;
        using pointer = XMLAttribute *;
        using reference = XMLAttribute &;

        explicit iterator(XMLAttribute *attribute = nullptr) : current(attribute) {}
        XMLAttribute &operator*() const { return *current; }
        XMLAttribute *operator->() const { return current; }
        iterator &operator++()
        {
            current = current->next;
            return *this;
        }
        iterator operator++(int)
        {
            const iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const iterator &other) const = default;

    private:
        XMLAttribute *current;
    };

    iterator begin() const { return iterator(first); }
    iterator end() const { return iterator(); }
    bool isEmpty() const { return !first; }

    XMLAttribute *first = nullptr;
};

/// Appends to an attribute list without looking whether a name is there already, and without
/// walking to its end each time. The list must not be changed otherwise meanwhile.
class XMLAttributeAppender
{
public:
    explicit XMLAttributeAppender(XMLAttributeList *list) : link(&list->first)
    {
        while (*link)
            link = &(*link)->next;
    }

    XMLAttribute *append(const char *name, const char *value)
    {
        auto *attribute = new XMLAttribute(name, value);
        *link = attribute;
        link = &attribute->next;
        return attribute;
    }

private:
    XMLAttribute **link;
};

class XMLElement : public XMLNode
{
public:
    explicit XMLElement(const char *tagName) : XMLNode(Kind::Element), tag(tagName) {}

    virtual void setName(const char *name) { tag = name; }
    virtual const char *name() const { return tag; }

    /// Replaces the value of the first attribute of that name in its place, or appends one. The
    /// pointers are kept, not what they point to.
    virtual void setAttribute(const char *name, const char *value);

    /// Removes the first attribute of that name, if there is one.
    virtual void removeAttribute(const char *name);
    virtual bool hasAttribute(const char *name) const;

    /// The value of the first attribute of that name. Null when there is none, and also when it
    /// has no value.
    virtual const char *attribute(const char *name) const;
    virtual XMLAttributeList &attributes()
    {
        literal = false;
        return attributeList;
    }
    const XMLAttributeList &attributes() const { return attributeList; }

    /// Whether no attribute value holds a '$', as far as that is known: the reader tells, and
    /// whatever could change an attribute makes it unknown.
    bool isLiteral() const { return literal; }
    void setLiteral() { literal = true; }

private:
    XMLAttribute *findAttribute(const char *name) const;

    bool literal = false;
    const char *tag;
    XMLAttributeList attributeList;
};

/// What character data, comments and CDATA sections have in common: one text.
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

/// Character data, its references decoded.
class XMLData : public XMLText
{
public:
    explicit XMLData(const char *data) : XMLText(Kind::Data, data) {}
};

/// The text between the delimiters of a comment.
class XMLComment : public XMLText
{
public:
    explicit XMLComment(const char *data) : XMLText(Kind::Comment, data) {}
};

/// The text between the delimiters of a CDATA section, taken literally.
class XMLCDATASection : public XMLText
{
public:
    explicit XMLCDATASection(const char *data) : XMLText(Kind::CDATASection, data) {}
};

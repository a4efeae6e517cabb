// The operations on trees and documents.

#include "command.h"
#include "qxmldocument.h"
#include "treetext.h"

#include <gtest/gtest.h>

namespace
{

/// A document with a(b,c) in it, and a chain d,e that is not linked to it.
class Tree : public testing::Test
{
protected:
    Tree() : current(&document)
    {
        a->appendChild(b);
        a->appendChild(c);
        d->nextSibling = e;
    }

    QXMLDocument document{false};
    CurrentPool current;
    XMLElement *a = document.createElement("a");
    XMLElement *b = document.createElement("b");
    XMLElement *c = document.createElement("c");
    XMLElement *d = document.createElement("d");
    XMLElement *e = document.createElement("e");
};

TEST_F(Tree, LinksAndUnlinks)
{
    a->removeChild(b);
    EXPECT_EQ(treeText(a), "a(c)");
    EXPECT_EQ(b->parent, a);
    EXPECT_EQ(b->nextSibling, c);
    a->removeChild(d);
    EXPECT_EQ(treeText(a), "a(c)");
    a->prependChild(b);
    EXPECT_EQ(treeText(a), "a(b,c)");
    a->replaceChild(c, e);
    EXPECT_EQ(treeText(a), "a(b,e)");
    a->replaceChild(b, c);
    EXPECT_EQ(treeText(a), "a(c,e)");
}

TEST_F(Tree, SplicesAWholeChain)
{
    a->insertAfter(b, d);
    EXPECT_EQ(treeText(a), "a(b,d,e,c)");
    b->insertAfter(nullptr, document.createElement("f"));
    EXPECT_EQ(treeText(a), "a(b(f),d,e,c)");
    XMLNode *g = document.createElement("g");
    g->nextSibling = document.createElement("h");
    e->insertAfter(c, g);
    EXPECT_EQ(treeText(a), "a(b(f),d,e(g,h),c)");
}

TEST_F(Tree, KeepsAttributesInOrder)
{
    for (const char *name : {"x", "y", "z"})
        a->setAttribute(name, "1");
    a->setAttribute("y", "2");
    a->setAttribute("n", nullptr);
    EXPECT_EQ(treeText(a), "a[x=1 y=2 z=1 n](b,c)");
    a->removeAttribute("x");
    a->removeAttribute("none");
    EXPECT_FALSE(a->hasAttribute("x"));
    EXPECT_TRUE(a->hasAttribute("n"));
    EXPECT_EQ(a->attribute("n"), nullptr);
    EXPECT_EQ(a->attribute("x"), nullptr);
    EXPECT_STREQ(a->attribute("y"), "2");
    a->removeAttribute("n");
    a->setAttribute("x", "3");
    EXPECT_EQ(treeText(a), "a[y=2 z=1 x=3](b,c)");
}

TEST_F(Tree, CopiesEveryKindAndSharesStrings)
{
    b->setAttribute("x", "1");
    b->setAttribute("n", nullptr);
    b->line = 7;
    b->appendChild(new XMLData("t"));
    b->appendChild(new XMLNode);
    b->appendChild(new XMLComment("c"));
    b->appendChild(new XMLCDATASection("s"));
    XMLNode *copy = document.copyNode(b, d);
    EXPECT_EQ(treeText(d), "d(b[x=1 n](#t,!c,[s]))");
    EXPECT_NE(copy, b);
    EXPECT_EQ(copy->line, 0);
    EXPECT_EQ(static_cast<XMLElement *>(copy)->attribute("x"), b->attribute("x"));
    EXPECT_EQ(document.copyNode(c, nullptr)->parent, nullptr);
    EXPECT_EQ(document.copyNode(new XMLNode, d), nullptr);
}

TEST_F(Tree, CopiesAndWritesAnyDepth)
{
    XMLElement *inner = d;
    d->nextSibling = nullptr;
    for (int i = 0; i < 200'000; ++i) {
        XMLElement *next = document.createElement("n");
        inner->appendChild(next);
        inner = next;
    }
    const XMLNode *copy = document.copyNode(d, nullptr);
    const XMLNode *expanded = document.copyElementExpanded(d, {});
    int depth = 0;
    while (copy->firstChild && expanded->firstChild) {
        copy = copy->firstChild;
        expanded = expanded->firstChild;
        ++depth;
    }
    EXPECT_EQ(depth, 200'000);
    FILE *nowhere = std::fopen("/dev/null", "wb");
    document.writeNode(nowhere, d, 0);
    std::fclose(nowhere);
}

TEST_F(Tree, ExpandsAttributes)
{
    const MacroMap macros{{QStringLiteral("m"), QStringLiteral("1")},
                          {QStringLiteral("wide"), QString(QChar(0x3B1)) + u'x'},
                          {QStringLiteral("none"), QString()}};
    const char *same = "$(unknown)";
    for (const auto &[name, value] :
         {std::pair("v", "$(m)2"), {"s", same}, {"w", "$(wide)"}, {"e", "$(none)"}, {"p", ""}})
        b->setAttribute(name, value);
    b->setAttribute("n", nullptr);
    b->appendChild(new XMLData("t"));
    b->appendChild(e);
    XMLElement *copy = document.copyElementExpanded(b, macros);
    EXPECT_EQ(treeText(copy), "b[v=12 s=$(unknown) w=?x e p n](e)");
    EXPECT_EQ(copy->parent, nullptr);
    EXPECT_NE(copy->attribute("s"), same);
    document.expandAttributes(b, macros);
    EXPECT_EQ(treeText(b), "b[v=12 s=$(unknown) w=?x e= p= n](#t,e)");
    EXPECT_EQ(b->attribute("s"), same);
}

TEST(Document, LoadsAndSavesByName)
{
    const ScratchDirectory scratch;
    scratch.write("a\xE9.xml", "<a/>");
    QXMLDocument document(false);
    EXPECT_TRUE(document.load(QString::fromLatin1(scratch.file("a\xE9.xml"))));
    EXPECT_TRUE(document.save(scratch.file("b.xml").c_str(), 0));
    EXPECT_TRUE(document.load(scratch.file("b.xml").c_str()));
    EXPECT_EQ(treeText(document.root), "a");
    const std::string absent = scratch.file("no/" + std::string(2000, 'x'));
    document.errorLine = 5;
    EXPECT_FALSE(document.load(QString::fromLatin1(absent)));
    EXPECT_EQ(document.errorLine, 0);
    EXPECT_EQ(document.errorMessage, ("couldn't read " + absent).substr(0, 1023));
    EXPECT_FALSE(document.save(QString::fromLatin1(absent), 2));
    EXPECT_EQ(document.errorMessage, ("couldn't write " + absent).substr(0, 1023));
    EXPECT_EQ(treeText(document.root), "a");
}

TEST(Document, ReadsAStreamFromItsStart)
{
    XMLDocument document(false);
    std::string text = "<a>" + std::string(10'000, ' ') + "</a>";
    FILE *stream = fmemopen(text.data(), text.size(), "rb");
    std::fgetc(stream);
    EXPECT_TRUE(document.read(stream));
    EXPECT_EQ(treeText(document.root), "a");
    std::fclose(stream);
    stream = std::fopen("/", "rb");
    EXPECT_FALSE(document.read(stream));
    EXPECT_EQ(treeText(document.root), "a");
    std::fclose(stream);
}

}  // namespace

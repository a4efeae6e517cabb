// The operations on trees and documents.

#include "command.h"
#include "qxmldocument.h"
#include "treetext.h"

using namespace Qt::StringLiterals;

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

    void expectA(const char *expected) { EXPECT_EQ(treeText(a), expected); }

    QXMLDocument document{false};
    CurrentPool current;
    XMLElement *a = document.createElement("a"), *b = document.createElement("b"),
               *c = document.createElement("c"), *d = document.createElement("d"),
               *e = document.createElement("e");
};

TEST_F(Tree, LinksAndUnlinks)
{
    a->removeChild(b);
    expectA("a(c)");
    EXPECT_EQ(b->parent, a);
    EXPECT_EQ(b->nextSibling, c);
    a->removeChild(d);
    a->prependChild(b);
    expectA("a(b,c)");
    a->replaceChild(c, e);
    expectA("a(b,e)");
    a->replaceChild(b, c);
    expectA("a(c,e)");
}

TEST_F(Tree, SplicesAWholeChain)
{
    XMLNode *g = document.createElement("g");
    g->nextSibling = document.createElement("h");
    a->insertAfter(b, d);
    b->insertAfter(nullptr, document.createElement("f"));
    expectA("a(b(f),d,e,c)");
    e->insertAfter(c, g);
    expectA("a(b(f),d,e(g,h),c)");
}

TEST_F(Tree, KeepsAttributesInOrder)
{
    for (const char *name : {"x", "y", "z"})
        a->setAttribute(name, "1");
    a->setAttribute("y", "2");
    a->setAttribute("n", nullptr);
    expectA("a[x=1 y=2 z=1 n](b,c)");
    a->removeAttribute("x");
    a->removeAttribute("none");
    EXPECT_TRUE(!a->hasAttribute("x") && a->hasAttribute("n"));
    EXPECT_TRUE(!a->attribute("x") && !a->attribute("n"));
    a->removeAttribute("n");
    a->setAttribute("x", "3");
    expectA("a[y=2 z=1 x=3](b,c)");
}

TEST_F(Tree, CopiesEveryKindAndSharesStrings)
{
    b->setAttribute("x", "1");
    b->setAttribute("n", nullptr);
    b->line = 7;
    XMLNode *children[] = {new XMLData("t"), new XMLNode, new XMLComment("c"),
                           new XMLCDATASection("s")};
    for (XMLNode *child : children)
        b->appendChild(child);
    const XMLNode *copy = document.copyNode(b, d);
    EXPECT_EQ(treeText(d, true), "d@0(b[x=1 n]@0(#t@0,!c@0,[s]@0))");
    EXPECT_EQ(static_cast<const XMLElement *>(copy)->attribute("x"), b->attribute("x"));
    EXPECT_EQ(document.copyNode(c, nullptr)->parent, nullptr);
    EXPECT_EQ(document.copyNode(new XMLNode, d), nullptr);
}

TEST_F(Tree, CopiesAndWritesAnyDepth)
{
    XMLNode *inner = c;
    for (int i = 0; i < 200'000; ++i, inner = inner->firstChild)
        inner->appendChild(document.createElement("n"));
    const XMLNode *copy = document.copyNode(c, nullptr);
    const XMLNode *expanded = document.copyElementExpanded(c, {});
    int depth = 0;
    for (; copy && expanded; copy = copy->firstChild, expanded = expanded->firstChild)
        ++depth;
    EXPECT_EQ(depth, 200'001);
    document.root = c;
    EXPECT_TRUE(document.save("/dev/null", 0));
}

TEST_F(Tree, ExpandsAttributes)
{
    const MacroMap macros{{u"m"_s, u"1"_s}, {u"wide"_s, u"\u03B1x"_s}, {u"none"_s, QString()}};
    const char *same = "$(unknown)";
    for (const auto &[name, value] :
         {std::pair("v", "$(m)2"), {"s", same}, {"w", "$(wide)"}, {"e", "$(none)"}, {"p", ""}})
        b->setAttribute(name, value);
    b->setAttribute("n", nullptr);
    b->appendChild(new XMLData("t"));
    b->appendChild(e);
    const XMLElement *copy = document.copyElementExpanded(b, macros);
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
    const std::string saved = scratch.file("b.xml");
    const std::string absent = scratch.file("no/" + std::string(2000, 'x'));
    QXMLDocument document(false);
    EXPECT_TRUE(document.load(QString::fromLatin1(scratch.file("a\xE9.xml"))));
    EXPECT_TRUE(document.save(saved.c_str(), 0) && document.load(saved.c_str()));
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
}

}  // namespace

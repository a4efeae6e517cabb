// The operations on trees and documents.

#include "command.h"
#include "qxmldocument.h"
#include "treetext.h"

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
    XMLElement *a = document.createElement("a"), *b = document.createElement("b"),
               *c = document.createElement("c"), *d = document.createElement("d"),
               *e = document.createElement("e");
};

TEST_F(Tree, LinksAndUnlinks)
{
    a->removeChild(b);
    a->removeChild(d);
    EXPECT_EQ(treeText(a), "a(c)");
    EXPECT_EQ(b->nextSibling, c);
    a->prependChild(b);
    a->replaceChild(c, e);
    EXPECT_EQ(treeText(a), "a(b,e)");
    a->replaceChild(b, c);
    EXPECT_EQ(treeText(a), "a(c,e)");
}

TEST_F(Tree, SplicesAWholeChain)
{
    XMLNode *g = document.createElement("g");
    g->nextSibling = document.createElement("h");
    a->insertAfter(b, d);
    b->insertAfter(nullptr, document.createElement("f"));
    EXPECT_EQ(treeText(a), "a(b(f),d,e,c)");
    e->insertAfter(c, g);
    EXPECT_EQ(treeText(a), "a(b(f),d,e(g,h),c)");
}

TEST_F(Tree, KeepsAttributesInOrder)
{
    for (const auto &[name, value] :
         {std::pair("x", "1"), {"y", "1"}, {"z", "1"}, {"y", "2"}, {"n", nullptr}})
        a->setAttribute(name, value);
    EXPECT_EQ(treeText(a), "a[x=1 y=2 z=1 n](b,c)");
    a->removeAttribute("x");
    a->removeAttribute("none");
    EXPECT_TRUE(!a->hasAttribute("x") && a->hasAttribute("n"));
    EXPECT_TRUE(!a->attribute("x") && !a->attribute("n"));
    a->setAttribute("x", "3");
    EXPECT_EQ(treeText(a), "a[y=2 z=1 n x=3](b,c)");
    // More than an element has memory for at first.
    for (const char name : std::string("ABCDEFGHIJKLMNOPQR"))
        b->setAttribute(XMLDocument::copyString(&name, 1), nullptr);
    b->removeAttribute("Q");
    EXPECT_EQ(treeText(b), "b[A B C D E F G H I J K L M N O P R]");
}

TEST_F(Tree, CopiesEveryKindAndSharesStrings)
{
    b->setAttribute("x", "1");
    b->setAttribute("n", nullptr);
    b->line = 7;
    for (XMLNode *child : std::initializer_list<XMLNode *>{
             new XMLData("t"), new XMLNode, new XMLComment("c"), new XMLCDATASection("s")})
        b->appendChild(child);
    const XMLNode *copy = document.copyNode(b, d);
    EXPECT_EQ(treeText(d, true), "d@0(b[x=1 n]@0(#t@0,!c@0,[s]@0))");
    EXPECT_EQ(static_cast<const XMLElement *>(copy)->attribute("x"), b->attribute("x"));
    EXPECT_EQ(document.copyNode(c, nullptr)->parent, nullptr);
    EXPECT_EQ(document.copyNode(new XMLNode, d), nullptr);
}

/// Its elements come with an attribute and a child.
class Furnished : public XMLDocument
{
public:
    using XMLDocument::XMLDocument;
    XMLElement *createElement(const char *name) override
    {
        XMLElement *element = XMLDocument::createElement(name);
        element->setAttribute("own", "0");
        element->appendChild(new XMLData("own"));
        return element;
    }
};

TEST(Document, KeepsWhatElementsOfASubclassComeWith)
{
    Furnished document(false);
    const CurrentPool current(&document);
    std::string text = R"(<a x="1"><b/><c own="2"/></a>)";
    ASSERT_TRUE(document.parse(text.data()));
    const std::string read = "a[own=0 x=1](#own,b[own=0](#own),c[own=2](#own))";
    EXPECT_EQ(treeText(document.root), read);
    // What was read comes behind what each copy comes with.
    EXPECT_EQ(treeText(document.copyNode(document.root, nullptr)),
              "a[own=0 x=1](#own,#own,b[own=0](#own,#own),c[own=2](#own,#own))");
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
    const MacroMap macros{{"m", "1"}, {"none", ""}};
    const char *same = "$(unknown)";
    b->setAttribute("v", "$(m)2");
    b->setAttribute("s", same);
    b->setAttribute("e", "$(none)");
    b->setAttribute("p", "");
    b->setAttribute("n", nullptr);
    b->appendChild(new XMLData("t"));
    b->appendChild(e);
    const XMLElement *copy = document.copyElementExpanded(b, macros);
    EXPECT_EQ(treeText(copy), "b[v=12 s=$(unknown) e p n](e)");
    EXPECT_NE(copy->attribute("s"), same);
    MapLookup lookup(&macros);
    std::uint64_t steps = 0;
    EXPECT_EQ(document.copyElementExpanded(b, lookup, &steps)->attribute("s"), same);
    EXPECT_GT(steps, 0U);
    document.expandAttributes(b, macros);
    EXPECT_EQ(treeText(b), "b[v=12 s=$(unknown) e= p= n](#t,e)");
    EXPECT_EQ(b->attribute("s"), same);
}

TEST_F(Tree, ExpandsWhereThePoolsBlockEnds)
{
    for (std::size_t length = 0; length < 1000; ++length) {
        const std::string value(length, 'm');
        b->setAttribute("v", "$(m)");
        document.expandAttributes(b, {{"m", value}});
        EXPECT_EQ(b->attribute("v"), value);
    }
}

TEST_F(Tree, ExpandsWhatIsSetAfterReading)
{
    std::string text = R"(<r><x n="1"/><y n="1"/><z n="1"/></r>)";
    ASSERT_TRUE(document.parse(text.data()));
    auto *x = static_cast<XMLElement *>(document.root->firstChild);
    auto *y = static_cast<XMLElement *>(x->nextSibling);
    auto *z = static_cast<XMLElement *>(y->nextSibling);
    x->setAttribute("n", "$(m)");
    y->setAttribute("o", "$(m)");
    z->attributes()[0].value = "$(m)";
    for (XMLElement *element : {x, y, z})
        document.expandAttributes(element, {{"m", "2"}});
    EXPECT_EQ(treeText(document.root), "r(x[n=2],y[n=1 o=2],z[n=2])");
}

TEST(Document, TellsWhatCannotBeReadOrWritten)
{
    const std::string absent = "/none/" + std::string(2000, 'x');
    QXMLDocument document(false);
    document.errorLine = 5;
    EXPECT_FALSE(document.load(absent));
    EXPECT_EQ(document.errorLine, 0);
    EXPECT_EQ(document.errorMessage, ("couldn't read " + absent).substr(0, 1023));
    EXPECT_FALSE(document.save(absent, 2));
    EXPECT_EQ(document.errorMessage, ("couldn't write " + absent).substr(0, 1023));
}

TEST(Document, ReadsUpToANulOrToTheLimit)
{
    const ScratchDirectory scratch;
    const std::string path = scratch.file("a.xml");
    const std::string much = "<a/>" + std::string(100'000, ' ');
    const std::string nul(1, '\0');
    const struct {
        std::string text;
        std::size_t limit;
        const char *outcome;
        std::uintmax_t size = 0;  ///< to which the file is blown up
    } rows[] = {
        {"<a/>", 4, "a"},
        {"<a/>", 3, "too long"},
        {much, much.size(), "a"},
        {much, much.size() - 1, "too long"},
        {"<a/>" + nul + much + "<b/>", SIZE_MAX, "a"},
        {much + nul + much + "<b/>", SIZE_MAX, "a"},
        {much + much + "<b/>" + nul + "<c/>", SIZE_MAX, "b"},
        {much, SIZE_MAX, "a", std::uintmax_t{1} << 40},
        {"<a/>", 1 << 20, "too long", std::uintmax_t{1} << 40},
    };
    for (const auto &[text, limit, outcome, size] : rows) {
        scratch.write("a.xml", text);
        if (size > 0)
            std::filesystem::resize_file(path, size);
        const auto pipe = "cat " + path;
        for (FILE *stream :
             {fopen(path.c_str(), "rb"), size > 0 ? nullptr : popen(pipe.c_str(), "r")}) {
            if (!stream)
                continue;
            XMLDocument document(false);
            document.readLimit = limit;
            std::fseek(stream, 1, SEEK_SET);  // a file is read from its start all the same
            EXPECT_NE(document.read(stream), document.passedReadLimit);
            EXPECT_EQ(document.passedReadLimit ? "too long" : treeText(document.root), outcome);
            std::fclose(stream);
        }
    }
    XMLDocument document(false);
    EXPECT_TRUE(document.load("/dev/zero"));
}

}  // namespace

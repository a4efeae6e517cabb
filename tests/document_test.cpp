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
    a->prependChild(document.createElement("f"));
    c->insertAfter(nullptr, d);
    e->insertAfter(nullptr, nullptr);
    EXPECT_EQ(treeText(a), "a(f,c(d,e))");
    a->replaceChild(a->firstChild, document.createElement("g"));
    a->insertAfter(a->firstChild, document.createElement("h"));
    EXPECT_EQ(treeText(a), "a(g,h,c(d,e))");
}

TEST_F(Tree, KeepsAttributesInOrder)
{
    for (const auto &[name, value] :
         {std::pair("x", "1"), {"y", "1"}, {"z", "1"}, {"y", "2"}, {"n", nullptr}})
        a->setAttribute(name, value);
    a->removeAttribute("x");
    a->removeAttribute("none");
    EXPECT_TRUE(!a->hasAttribute("x") && a->hasAttribute("n"));
    EXPECT_TRUE(!a->attribute("x") && !a->attribute("n"));
    a->setAttribute("x", "3");
    EXPECT_EQ(treeText(a), "a[y=2 z=1 n x=3](b,c)");
    // More than an element has memory for at first.
    for (const char name : std::string("ABCDEFGHIJKLMNOPQR"))
        b->setAttribute(XMLDocument::copyString(&name, 1), nullptr);
    EXPECT_EQ(treeText(b), "b[A B C D E F G H I J K L M N O P Q R]");
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
    std::string text = R"(<a x="1"><b own="2"/></a>)";
    ASSERT_TRUE(document.parse(text.data()));
    EXPECT_EQ(treeText(document.root), "a[own=0 x=1](#own,b[own=2](#own))");
    // What was read comes behind what each copy comes with.
    EXPECT_EQ(treeText(document.copyNode(document.root, nullptr)),
              "a[own=0 x=1](#own,#own,b[own=2](#own,#own))");
}

TEST_F(Tree, ExpandsAttributes)
{
    const MacroMap macros{{"m", "1"}, {"none", ""}};
    const char *same = "$(unknown)";
    for (const auto &[name, value] :
         {std::pair("v", "$(m)2"), {"s", same}, {"e", "$(none)"}, {"p", ""}, {"n", nullptr}})
        b->setAttribute(name, value);
    for (XMLNode *child : std::initializer_list<XMLNode *>{new XMLData("t"), new XMLNode, e})
        b->appendChild(child);
    const XMLElement *copy = document.copyElementExpanded(b, macros);
    EXPECT_EQ(treeText(copy), "b[v=12 s=$(unknown) e p n](e)");
    EXPECT_NE(copy->attribute("s"), same);
    MapLookup lookup(&macros);
    std::uint64_t steps = 0;
    EXPECT_EQ(document.copyElementExpanded(b, lookup, &steps)->attribute("s"), same);
    EXPECT_GT(steps, 50U);
    b->firstChild = nullptr;
    document.expandAttributes(b, macros);
    EXPECT_EQ(treeText(b), "b[v=12 s=$(unknown) e= p= n]");
    EXPECT_EQ(b->attribute("s"), same);
}

TEST_F(Tree, KnowsWhichElementsHaveReferences)
{
    std::string text = R"xml(<r><a n="1"/><b n="&#36;(m)"/><x n="1"/><y n="1"/><z n="1"/></r>)xml";
    ASSERT_TRUE(document.parse(text.data()));
    std::vector<XMLElement *> elements;
    for (XMLNode *child = document.root->firstChild; child; child = child->nextSibling)
        elements.push_back(static_cast<XMLElement *>(child));
    EXPECT_TRUE(elements[0]->isLiteral());
    elements[2]->setAttribute("n", "$(m)");
    elements[3]->appendAttribute("o", "$(m)");
    elements[4]->attributes()[0].value = "$(m)";
    for (XMLElement *element : elements)
        document.expandAttributes(element, {{"m", "2"}});
    EXPECT_EQ(treeText(document.root), "r(a[n=1],b[n=2],x[n=2],y[n=1 o=2],z[n=2])");
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
        {much, much.size() - 1, "too long"},
        {"<a/>" + nul + much + "<b/>", SIZE_MAX, "a"},
        {much + much + "<b/>" + nul + "<c/>", SIZE_MAX, "b"},
        {much, SIZE_MAX, "a", std::uintmax_t{1} << 40},
        {"<a/>", 1 << 20, "too long", std::uintmax_t{1} << 40},
    };
    XMLDocument document(false);
    const auto outcomeOf = [&](FILE *stream) {
        std::fseek(stream, 1, SEEK_SET);  // a file is read from its start all the same
        EXPECT_NE(document.read(stream), document.passedReadLimit);
        std::fclose(stream);
        return document.passedReadLimit ? "too long" : treeText(document.root);
    };
    for (const auto &[text, limit, outcome, size] : rows) {
        scratch.write("a.xml", text);
        document.readLimit = limit;
        if (size > 0)
            std::filesystem::resize_file(path, size);
        else
            EXPECT_EQ(outcomeOf(popen(("cat " + path).c_str(), "r")), outcome);
        EXPECT_EQ(outcomeOf(fopen(path.c_str(), "rb")), outcome);
    }
    EXPECT_TRUE(document.load("/dev/zero"));
    const std::string absent = "/none/" + std::string(2000, 'x');
    document.errorLine = 5;
    EXPECT_FALSE(document.load(absent.c_str()));
    EXPECT_EQ(document.errorLine, 0);
    EXPECT_EQ(document.errorMessage, ("couldn't read " + absent).substr(0, 1023));
}

}  // namespace

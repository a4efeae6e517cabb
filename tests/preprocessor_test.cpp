// The walk from within: errors that return, bounds, and what the command line does not reach.

#include "treetext.h"
#include "xmlpp2.h"

#include <gtest/gtest.h>

#include <pthread.h>

namespace
{

class Recorder : public XMLPP2
{
public:
    using XMLPP2::XMLPP2;

    void reportError(const QString &message) override
    {
        EXPECT_TRUE(message.startsWith(QStringLiteral("XmlPP::processConditionals(): ")));
        errors += message.sliced(30).toStdString() + "\n";
    }

    /// Parses and walks; the tree, then the errors.
    std::string walk(std::string text, bool expand = true)
    {
        const CurrentPool current(this);
        EXPECT_TRUE(parse(text.data()));
        processConditionals(root, QStringLiteral("dir/in.xml"), macros, expand);
        return treeText(root) + (errors.empty() ? "" : " " + errors);
    }

    MacroMap macros;
    std::string errors;
};

struct Walked {
    const char *text;
    const char *expected;
};

void expectWalks(std::initializer_list<Walked> cases, const Limits &limits = {}, bool expand = true)
{
    for (const Walked &walked : cases) {
        Recorder document(true);
        document.limits = limits;
        document.keepComments = false;
        EXPECT_EQ(document.walk(walked.text, expand), walked.expected) << walked.text;
    }
}

TEST(Walk, GoesOnAfterAnErrorThatReturns)
{
    expectWalks({
        {"<r><if><b v=\"$(x:1)\"/></if></r>",
         "r(if(b[v=1])) one condition required for <if[not]>\n"},
        {"<r><ifnot a=\"1\" b=\"2\"><b/></ifnot></r>",
         "r(ifnot[a=1 b=2](b)) one condition required for <if[not]>\n"},
        {"<r><include><b/></include><c/></r>", "r(include(b),c) missing filename in <include>\n"},
        {"<r><include filename=\"none.xml\"><b/></include></r>",
         "r(include[filename=none.xml](b)) error \"couldn't read dir/none.xml\" in include file "
         "dir/none.xml line:0\n"},
        {"<r><define value=\"1\"/><a/></r>", "r(a) missing name in <define>\n"},
        {"<r><define name=\"x\"/><ifdef name=\"x\"/></r>",
         "r missing value or expression in <define>\n"},
        {"<r><for index=\"i\" start=\"0\" end=\"1\"><a/></for><b/></r>",
         "r(b) <for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">\n"},
        {"<r><for index=\"i\" start=\"0\" end=\"1\" incr=\"1\"/></r>",
         "r <for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">\n"},
        {"<r><xmlput name=\"$(n:f)\"><b/></xmlput></r>",
         "r(xmlput[name=f](b)) xmlput cannot fine xmldef named f\n"},
    });
}

TEST(Walk, LeavesOneRootOrNone)
{
    expectWalks({
        {"<ifdef name=\"x\"><a/></ifdef>", "null"},
        {"<ifndef name=\"x\"><a/></ifndef>", "a"},
        {"<ifndef name=\"x\"/>", "null"},
        {"<define name=\"x\" value=\"1\"/>", "null"},
        {"<ifndef name=\"x\"><a/><b/></ifndef>", "a the document needs exactly one root element\n"},
        {"<ifndef name=\"x\"><![CDATA[c]]></ifndef>",
         "[c] the document needs exactly one root element\n"},
        {"<foreach x=\"1\"><a v=\"$(x)\"/></foreach>", "a[v=1]"},
        {"<foreach x=\"1,2\"><ifdef name=\"n\"/><a/></foreach>",
         "a the document needs exactly one root element\n"},
        {"<xmldef name=\"f\"/>", "null"},
        {"<xmldef/>", "xmldef"},
        {"<switch name=\"s\"><default><a/></default></switch>", "a"},
    });
}

TEST(Walk, PassesOverWhatIsNoElement)
{
    constexpr const char *text =
        "<r><![CDATA[$(x)]]><ifndef name=\"x\"><![CDATA[c]]><a/></ifndef></r>";
    expectWalks({{text, "r([$(x)],[c],a)"}});
    Recorder keeping(true);
    EXPECT_EQ(keeping.walk("<r>1<!--c--><ifndef name=\"x\">2<b/></ifndef>3</r>"),
              "r(#1,!c,#,#2,b,#,#3)");
    EXPECT_EQ(Recorder(true).walk("<r><switch name=\"x\">t<default>u</default></switch></r>"),
              "r(#,#u,#)");
}

TEST(Walk, LeavesAttributesAloneWithoutExpansion)
{
    expectWalks(
        {
            {"<r v=\"$(x:1)\"><define name=\"x\" value=\"$(y:2)\"/><if x=\"$(y:2)\"><a/></if></r>",
             "r[v=$(x:1)](a)"},
            {"<r><define name=\"x\" value=\"1\"/><ifex expression=\"$(x)==1\"><a "
             "v=\"$(x)\"/></ifex></r>",
             "r(a[v=$(x)])"},
            {"<r><xmldef name=\"f\"><a v=\"$(x)\"/></xmldef><xmlput name=\"f\" macros=\"x=1\"/>"
             "<xmlput name=\"f\" macros=\"x=1\" expand_macros=\"\"/><xmlput name=\"f\" "
             "expand_macros=\"\"/></r>",
             "r(a[v=$(x)],a[v=1],a[v=$(x)])"},
        },
        {}, false);
}

TEST(Walk, StartsAnywhereInAChain)
{
    Recorder document;
    std::string text = "<r><define name=\"x\" value=\"1\"/><ifdef name=\"x\"><a/></ifdef>"
                       "<define name=\"y\" value=\"$(x:0)\"/></r>";
    ASSERT_TRUE(document.parse(text.data()));
    const CurrentPool current(&document);
    document.macros.insert(QStringLiteral("x"), QStringLiteral("2"));
    document.processConditionals(document.root->firstChild->nextSibling, QString(), document.macros,
                                 true);
    EXPECT_EQ(treeText(document.root), "r(define[name=x value=1],a)");
    EXPECT_EQ(document.macros.value(QStringLiteral("y")), QStringLiteral("2"));
    document.processConditionals(nullptr, QString(), document.macros, true);
}

TEST(Limits, AreMetFromBothSides)
{
    Limits limits;
    limits.nestedLevels = 3;
    expectWalks(
        {{"<a><b><c/></b></a>", "a(b(c))"},
         {"<a><b><c><d/></c></b></a>", "a(b(c(d))) nested more than 3 levels deep\n"},
         {"<a><xmldef name=\"f\"><b><xmlput name=\"f\"/></b></xmldef><xmlput name=\"f\"/></a>",
          "a(b(xmlput[name=f])) nested more than 3 levels deep\n"}},
        limits);
    limits = {};
    limits.loopRounds = 4;
    const std::string rounds = " rounds in <for>\n";
    expectWalks(
        {{"<r><for index=\"i\" start=\"0\" end=\"8\" incr=\"2\"><a/></for></r>", "r(a,a,a,a)"},
         {"<r><for index=\"i\" start=\"0\" end=\"9\" incr=\"2\"><a/></for><b/></r>",
          "r(b) more than 4 rounds in <for>\n"},
         {"<r><for index=\"i\" start=\"0\" end=\"5\" incr=\"4294967295\"><a/></for></r>", "r(a)"},
         {"<r><for index=\"i\" start=\"2\" end=\"4294967295\" incr=\"2147483648\"><a/></for></r>",
          "r more than 4 rounds in <for>\n"},
         {"<r><foreach x=\"1,2\" y=\"1,2\"><a/></foreach></r>", "r(a,a,a,a)"},
         {"<r><foreach x=\"1,2\" y=\"1,2,3\"><a/></foreach></r>",
          "r more than 4 rounds in <foreach>\n"},
         {"<r><foreach x=\"1,2,3\" y=\"1,2,3\" z=\",\"><a/></foreach></r>", "r"}},
        limits);
    limits = {};
    limits.nestedIncludes = 0;
    expectWalks({{"<r><include filename=\"/b\"/></r>",
                  "r(include[filename=/b]) more than 0 nested includes at /b\n"}},
                limits);
    limits = {};
    limits.growth = 3000;
    std::string copies = "r(a";
    for (int i = 1; i < 40; ++i)
        copies += ",a";
    expectWalks({{"<r><for index=\"i\" start=\"0\" end=\"40\" incr=\"1\"><a/></for></r>",
                  (copies + ")").c_str()},
                 {"<r><for index=\"i\" start=\"0\" end=\"400\" incr=\"1\"><a/></for></r>",
                  "r(for[index=i start=0 end=400 incr=1](a)) directives bring more than 3000 bytes "
                  "into the document\n"},
                 {"<r><xmldef name=\"f\"><xmlput name=\"f\"/></xmldef><xmlput name=\"f\"/></r>",
                  "r(xmlput[name=f]) directives bring more than 3000 bytes into the document\n"}},
                limits);
}

TEST(Limits, TakeLessThanHalfOfTheStack)
{
#ifdef __SANITIZE_ADDRESS__
    constexpr std::size_t stackSize = std::size_t{64} << 20;
#else
    constexpr std::size_t stackSize = std::size_t{4} << 20;
#endif
    const auto nest = [](void *) -> void * {
        // Ifs, and a fragment that puts itself: the largest frames that a level can take.
        const int levels = Limits().nestedLevels;
        std::string opened;
        std::string closed;
        for (int i = 1; i < levels; ++i) {
            opened += "<if m=\"1\">";
            closed += "</if>";
        }
        Recorder ifs;
        ifs.macros.insert(QStringLiteral("m"), QStringLiteral("1"));
        EXPECT_EQ(ifs.walk("<r>" + opened + closed + "</r>"), "r");
        Recorder fragments;
        fragments.walk("<r><xmldef name=\"f\"><xmlput name=\"f\" macros=\"a=1\"/></xmldef>"
                       "<xmlput name=\"f\"/></r>");
        EXPECT_EQ(fragments.errors,
                  "nested more than " + std::to_string(levels) + " levels deep\n");
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stackSize);
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, nest, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace

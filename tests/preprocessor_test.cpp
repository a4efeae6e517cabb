// The walk from within: errors that return, bounds, and what the command line does not reach.

#include "command.h"
#include "macrovalues.h"
#include "written.h"
#include "xmlpp2.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

void expectParents(const XMLNode *parent)
{
    for (const XMLNode *child = parent->firstChild; child; child = child->nextSibling) {
        EXPECT_EQ(child->parent, parent);
        expectParents(child);
    }
}

/// A document whose errors return. A ' stands for a " in what goes in and what comes out.
class Recorder : public XMLPP2
{
public:
    using XMLPP2::XMLPP2;

    /// Leaves out what all messages begin with.
    void reportError(const std::string &message) override { errors += " ! " + message.substr(30); }

    /// One of them comes with a child.
    XMLElement *createElement(const char *name) override
    {
        XMLElement *element = XMLPP2::createElement(name);
        if (std::string_view(name) == "own") {
            element->firstChild = XMLPP2::createElement("c");
            element->firstChild->parent = element;
            static_cast<XMLElement *>(element->firstChild)->setAttribute("v", "$(x)");
        }
        return element;
    }

    void read(std::string document)
    {
        const CurrentPool current(this);
        std::ranges::replace(document, '\'', '"');
        EXPECT_TRUE(parse(document.data()));
    }

    /// The document in one line, then each error behind a " ! ".
    std::string walk(XMLNode *from, bool expand = true)
    {
        const CurrentPool current(this);
        processConditionals(from, directory + "/in.xml", macros, expand);
        if (root)
            expectParents(root);
        std::string result = written([this](FILE *stream) { write(stream, 0); }) + errors;
        std::ranges::replace(result, '"', '\'');
        return result;
    }

    MacroMap macros;
    std::string directory = "no";
    std::string errors;
};

std::string repeated(int times, const std::string &piece)
{
    std::string all;
    while (times-- > 0)
        all += piece;
    return all;
}

struct Row {
    const char *document;
    const char *result;
};

void expectWalks(const std::vector<Row> &rows, const Limits &limits = {}, bool expand = true)
{
    for (const auto &[document, result] : rows) {
        Recorder recorder;
        recorder.limits = limits;
        recorder.read(document);
        EXPECT_EQ(recorder.walk(recorder.root, expand), result) << document;
    }
}

TEST(Walk, GoesOnAfterAnErrorThatReturns)
{
    expectWalks({
        {"<if><b v='$(x:1)'/></if>", "<if><b v='1'/></if> ! one condition required for <if[not]>"},
        {"<ifnot a='1' b='2'/>", "<ifnot a='1' b='2'/> ! one condition required for <if[not]>"},
        {"<include><b/></include>", "<include><b/></include> ! missing filename in <include>"},
        {"<include filename='a'/>", "<include filename='a'/>"
                                    " ! error 'couldn't read no/a' in include file no/a line:0"},
        {"<include filename='/dev/null'/>",
         "<include filename='/dev/null'/> ! error: include file '/dev/null' is empty"},
        {"<r><define value='1'/><a/></r>", "<r><a/></r> ! missing name in <define>"},
        {"<define name='x'/>", " ! missing value or expression in <define>"},
        {"<r><for start='0' end='1' incr='1'><a/></for><b/></r>",
         "<r><b/></r> ! <for index='i' start='0' end='32' incr='1'>"},
        {"<for index='i' start='0' end='1' incr='1'/>",
         " ! <for index='i' start='0' end='32' incr='1'>"},
        {"<for index='i' start='0' end='1' incr='0'><a/></for>",
         " ! <for index='i' start='0' end='32' incr='1'>"},
        {"<xmlput name='$(n:f)'><b/></xmlput>",
         "<xmlput name='f'><b/></xmlput> ! xmlput cannot fine xmldef named f"},
        {"<ifndef name='x'><a/><b/></ifndef>",
         "<a/> ! the document needs exactly one root element"},
        {"<ifndef name='x'><![CDATA[a]]></ifndef>",
         "<![CDATA[a]]> ! the document needs exactly one root element"},
    });
}

TEST(Walk, LeavesAttributesAloneWithoutExpansion)
{
    expectWalks(
        {{"<r><define name='x' value='$(y:2)'/><if x='$(y:2)'><a v='$(x)'/></if></r>",
          "<r><a v='$(x)'/></r>"},
         {"<r><define name='x' value='2'/><xmldef name='f'><a v='$(x)'/></xmldef>"
          "<xmlput name='f' macros='x=1'/>"
          "<xmlput name='f' macros='x=1' expand_macros=''/><xmlput name='f' expand_macros=''/></r>",
          "<r><a v='$(x)'/><a v='1'/><a v='$(x)'/></r>"}},
        {}, false);
}

TEST(Walk, PassesOverWhatIsNoElement)
{
    Recorder recorder(true);
    recorder.read("<r>1<!--c--><ifndef name='x'>2<![CDATA[$(x)]]></ifndef>"
                  "<switch name='x'>t<!--c--><default>3</default></switch>4</r>");
    EXPECT_EQ(recorder.walk(recorder.root), "<r>1<!--c-->2<![CDATA[$(x)]]>34</r>");
}

TEST(Walk, StartsAnywhereInAChain)
{
    Recorder recorder;
    recorder.read("<r><define name='x' value='1'/><ifdef name='x'><a/></ifdef>"
                  "<define name='y' value='$(x:0)'/><include filename='0'/></r>");
    recorder.macros["x"] = "2";
    recorder.directory = "";
    EXPECT_EQ(recorder.walk(recorder.root->firstChild->nextSibling),
              "<r><define name='x' value='1'/><a/><include filename='0'/></r>"
              " ! error 'couldn't read //0' in include file //0 line:0");
    EXPECT_EQ(recorder.macros["y"], "2");
    recorder.walk(nullptr);
}

/// The first put is walked, and from the second one on a fragment without directives is not.
TEST(Fragments, BecomeTheSameHoweverOftenTheyArePut)
{
    const std::string year = globalMacros.expandMacros({{"DateYear", ""}}, "$(DateYear)", false);
    for (const auto &[fragment, x0, x1] : std::vector<std::array<std::string, 3>>{
             {"<a v='$(x)-$(x)' w='l'><b/><b><c v='$(u:d)'/></b></a><e v='$(x)'/>",
              "<a v='0-0' w='l'><b/><b><c v='d'/></b></a><e v='0'/>",
              "<a v='1-1' w='l'><b/><b><c v='2'/></b></a><e v='1'/>"},
             {"<a v='$(u)' w='$(u::a:b)' x='$(u:)' y='' z/>", "<a v='$(u)' w='a:b' x='' y=''/>",
              "<a v='2' w='2' x='2' y=''/>"},
             {"<a v='$$(x)$' w='$(x'/>", "<a v='$0$' w='(x'/>", "<a v='$1$' w='(x'/>"},
             {"<a v='$(u:$(x))' w='$(u(x))'/>", "<a v='0' w='$(u(x))'/>", "<a v='2' w='$(u(x))'/>"},
             {"<a v='$(DateX)$(ref)' w='$(e:d)'/>", "<a v='$(DateX)$(x)' w=''/>",
              "<a v='3$(x)' w=''/>"},
             {"<a v='$(DateYear)'/>", "<a v='$(DateYear)'/>", "<a v='" + year + "'/>"},
             {"<a v='$(x)'/><define name='x' value='4'/><b v='$(x)'/>", "<a v='0'/><b v='4'/>",
              "<a v='1'/><b v='4'/>"},
             {"<a v='$(x)'/><xmlput name='g' macros='y=$(x)'/>", "<a v='0'/><g v='0' null=''/>",
              "<a v='1'/><g v='1' null=''/>"},
             {"1<a><!--$(x)-->2<b v='$(x)'/></a><![CDATA[3]]>",
              "1<a><!--$(x)-->2<b v='0'/></a><![CDATA[3]]>",
              "1<a><!--$(x)-->2<b v='1'/></a><![CDATA[3]]>"},
             {"<a v='$(x)'/><own/>", "<a v='0'/><own><c v='0'/><c v='0'/></own>",
              "<a v='1'/><own><c v='1'/><c v='1'/></own>"},
             {"<a/>", "<a/>", "<a/>"},
         }) {
        const std::string puts =
            "<xmlput name='f'/><p><xmlput name='f' macros='x=1;u=2;DateX=3;DateYear=4'/></p>";
        Recorder recorder(fragment.starts_with("1"));
        recorder.read("<r><define name='ref' value='$(x)'/><define name='x' value='0'/>"
                      "<define name='e' value=''/>"
                      "<foreach e='1'><xmldef name='g'><g v='$(y)' "
                      "null='$(u:)'/></xmldef></foreach><xmldef name='f'>" +
                      fragment + "</xmldef>" + repeated(3, puts) +
                      "<xmldef name='f'><n/></xmldef>" + repeated(3, "<xmlput name='f'/>") +
                      "</r>");
        EXPECT_EQ(recorder.walk(recorder.root),
                  "<r>" + repeated(3, x0 + "<p>" + x1 + "</p>") + "<n/><n/><n/></r>");
    }
}

TEST(Fragments, ExpandNoFurtherThanAnyText)
{
    Recorder recorder;
    recorder.read("<r><xmldef name='f'><a v='" + repeated(65, "$(x:)") +
                  "'/></xmldef><xmlput name='f'/><xmlput name='f' macros='x=" +
                  std::string(1 << 20, '.') + "'/></r>");
    EXPECT_THROW(recorder.walk(recorder.root), std::bad_alloc);
}

TEST(Limits, AreMetFromBothSides)
{
    expectWalks(
        {{"<a><b><c/></b><b><c/></b></a>", "<a><b><c/></b><b><c/></b></a>"},
         {"<a><b><c><d/></c></b></a>",
          "<a><b><c><d/></c></b></a> ! nested more than 3 levels deep"},
         {"<r><xmldef name='f'><a x='$(y:1)'/></xmldef><xmlput name='f'/><xmlput name='f'/></r>",
          "<r><a x='1'/><a x='1'/></r>"},
         {"<r><xmldef name='f'><a x='$(y:1)'/></xmldef><xmlput name='f'/><b><xmlput "
          "name='f'/></b></r>",
          "<r><a x='1'/><b><a x='$(y:1)'/></b></r> ! nested more than 3 levels deep"},
         {"<include filename='/b'/>",
          "<include filename='/b'/> ! more than 0 nested includes at /b"},
         {"<r><for index='i' start='0' end='8' incr='2'><a/></for></r>", "<r><a/><a/><a/><a/></r>"},
         {"<for index='i' start='0' end='9' incr='2'><a/></for>", " ! more than 4 rounds in <for>"},
         {"<for index='i' start='0' end='5' incr='4294967295'><a/></for>", "<a/>"},
         {"<for index='i' start='2' end='4294967295' incr='2147483648'><a/></for>",
          " ! more than 4 rounds in <for>"},
         {"<r><foreach x='1,2' y='1,2'><a/></foreach></r>", "<r><a/><a/><a/><a/></r>"},
         {"<r><foreach x='1,2,3,4,5'><a/></foreach><b/></r>",
          "<r><b/></r> ! more than 4 rounds in <foreach>"},
         {"<foreach x='1,2,3' y='1,2,3' z=','><a/></foreach>", ""}},
        {.nestedLevels = 3, .nestedIncludes = 0, .loopRounds = 4});
}

const std::string defaults = "<a v='" + repeated(50, "$(u:") + repeated(50, ")") + "'/>";
const std::string fragments =
    "<xmldef name='empty'/><xmldef name='long'><a v='" + repeated(5000, "x") + "'/></xmldef>" +
    "<xmldef name='copies'><a v='$(u:1)'/></xmldef><xmldef name='references'><a v='" +
    repeated(100, "$(u)") + "'/></xmldef><xmldef name='defaults'>" + defaults +
    "</xmldef><xmldef name='rounds'>" +
    "<for index='i' start='0' end='300000' incr='1'><![CDATA[]]></for></xmldef>";

/// To do \a body twice is within \a limits, to do it 5,000 times is not.
void expectBound(const std::string &body, const Limits &limits, const std::string &error)
{
    const ScratchDirectory scratch;
    scratch.write("a.xml", "<a/>");
    for (const std::string times : {"2", "5000"}) {
        Recorder recorder;
        recorder.limits = limits;
        recorder.directory = scratch.path();
        std::string document = "<r>" + fragments + "<for index='i' start='0' end='";
        recorder.read(document.append(times).append("' incr='1'>").append(body) + "</for></r>");
        recorder.walk(recorder.root);
        EXPECT_EQ(recorder.errors.substr(0, 99), times == "2" ? "" : error) << body.substr(0, 99);
    }
}

TEST(Limits, BoundWhatDirectivesBringIn)
{
    for (const char *body : {"<a/>", "<include filename='a.xml'/>", "<xmlput name='copies'/>"}) {
        expectBound(body, {.growth = 50'000},
                    " ! directives bring more than 50000 bytes into the document");
    }
}

TEST(Limits, BoundWorkThatBringsLittleIn)
{
    for (const std::string &body : {
             std::string("<xmlput name='long'/>"),
             std::string("<xmlput name='defaults'/>"),
             std::string("<include filename='a.xml'/>"),
             std::string("<xmlput name='rounds'/>"),
             std::string(
                 "<switch name='u'><case><xmlput name='references'/></case><default/></switch>"),
             "<ifex expression='1==1" + repeated(500, "+1") + "'/>",
             "<xmlput name='empty' macros='" + repeated(500, "a=1;") + "'/>",
             defaults,
         }) {
        expectBound(body, {.work = 1'000'000},
                    " ! directives make more than 1000000 steps of work");
    }
}

}  // namespace

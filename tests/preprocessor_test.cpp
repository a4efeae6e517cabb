// The walk from within: errors that return, bounds, and what the command line does not reach.

#include "treetext.h"
#include "xmlpp2.h"

#include <algorithm>

namespace
{

class Recorder : public XMLPP2
{
public:
    using XMLPP2::XMLPP2;

    void reportError(const std::string &message) override
    {
        errors += std::string(message).replace(0, 29, " !");
    }

    /// Parses \a text, in which a ' stands for a ", and walks; the tree, then the errors.
    std::string walk(std::string text, bool expand = true)
    {
        const CurrentPool current(this);
        std::ranges::replace(text, '\'', '"');
        EXPECT_TRUE(parse(text.data()));
        processConditionals(root, "dir/in.xml", macros, expand);
        return treeText(root) + errors;
    }

    MacroMap macros;
    std::string errors;
};

void expectWalks(std::initializer_list<std::string> cases, const Limits &limits = {},
                 bool expand = true)
{
    expectAll(cases, [&](const std::string &text) {
        Recorder document(false);
        document.limits = limits;
        return document.walk(text, expand);
    });
}

TEST(Walk, GoesOnAfterAnErrorThatReturns)
{
    const std::string form = R"( ! <for index="i" start="0" end="32" incr="1">)";
    const std::string lost = R"( ! error "couldn't read dir/no" in include file dir/no line:0)";
    const std::string one = " ! one condition required for <if[not]>";
    expectWalks({
        "<r><if><b v='$(x:1)'/></if></r> => r(if(b[v=1]))" + one,
        "<r><ifnot a='1' b='2'><b/></ifnot></r> => r(ifnot[a=1 b=2](b))" + one,
        "<r><include><b/></include><c/></r> => r(include(b),c) ! missing filename in <include>",
        "<r><include filename='no'><b/></include></r> => r(include[filename=no](b))" + lost,
        "<r><define value='1'/><a/></r> => r(a) ! missing name in <define>",
        "<r><define name='x'/><ifdef name='x'/></r> => r ! missing value or expression in <define>",
        "<r><for index='i' start='0' end='1'><a/></for><b/></r> => r(b)" + form,
        "<r><for index='i' start='0' end='1' incr='1'/></r> => r" + form,
        "<r><for index='i' start='0' end='1' incr='0'><a/></for></r> => r" + form,
        "<r><xmlput name='$(n:f)'><b/></xmlput><xmldef name='f'/></r> => r(xmlput[name=f](b)) ! "
        "xmlput cannot fine xmldef named f",
    });
}

TEST(Walk, TakesWhatIsMissingInItsOwnWay)
{
    expectWalks(
        {"<r><define name='' value='e'/><ifdef><a/></ifdef><ifndef><b/></ifndef><switch><case "
         "value='e'><c/></case></switch></r> => r(a,c)",
         "<r><xmldef><if m=''><a/></if><xmlput macros='m=1'/></xmldef></r> => "
         "r(xmldef(xmlput[macros=m=1]))",
         "<r><ifex expression='1==1 behind'><a/></ifex><ifex expression=''><b/></ifex><ifex><c/>"
         "</ifex><ifex expression=' '><d/></ifex></r> => r(a,ifex[expression=](b),ifex(c))"});
}

TEST(Walk, LeavesOneRootOrNone)
{
    const std::string wrong = " ! the document needs exactly one root element";
    expectWalks({"<ifdef name='x'><a/></ifdef> => null", "<ifndef name='x'/> => null",
                 "<ifndef name='x'><a/></ifndef> => a", "<xmldef name='f'/> => null",
                 "<define name='x' value='1'/> => null", "<xmldef/> => xmldef",
                 "<foreach x='1'><a v='$(x)'/></foreach> => a[v=1]",
                 "<ifndef name='x'><a/><b/></ifndef> => a" + wrong,
                 "<ifndef name='x'><![CDATA[c]]></ifndef> => [c]" + wrong,
                 "<foreach x='1,2'><ifdef name='n'/><a/></foreach> => a" + wrong,
                 "<switch name='s'><default><a/></default></switch> => a"});
}

TEST(Walk, PassesOverWhatIsNoElement)
{
    expectAll({"<r>1<!--c--><ifndef name='x'>2<![CDATA[$(x)]]></ifndef>3</r> => "
               "r(#1,!c,#,#2,[$(x)],#,#3)",
               "<r><switch name='x'>t<default>u</default></switch></r> => r(#,#u,#)"},
              [](const std::string &text) { return Recorder(true).walk(text); });
}

TEST(Walk, LeavesAttributesAloneWithoutExpansion)
{
    expectWalks({"<r v='$(x:1)'><define name='x' value='$(y:2)'/><if x='$(y:2)'><a/></if><define "
                 "name='n' value='1'/><ifex expression='$(n)==1'><b v='$(n)'/></ifex></r> => "
                 "r[v=$(x:1)](a,b[v=$(n)])",
                 "<r><xmldef name='f'><a v='$(x)'/></xmldef><xmlput name='f' macros='x=1'/><xmlput "
                 "name='f' macros='x=1' expand_macros=''/><xmlput name='f' expand_macros=''/></r> "
                 "=> r(a[v=$(x)],a[v=1],a[v=$(x)])",
                 "<r><define name='n' value='3'/><for index='i' start='1' end='2' incr='1' "
                 "mul='$(n)' add='$(n)+1'><a v='$(i_ap)'/></for><for index='i' start='0' "
                 "end='$(n)' incr='1'><b/></for></r> => r(a[v=7])"},
                {}, false);
}

TEST(Walk, StartsAnywhereInAChain)
{
    Recorder document;
    std::string text = R"-(<r><define name="x" value="1"/><ifdef name="x"><a/></ifdef>)-"
                       R"-(<define name="y" value="$(x:0)"/><include filename="0"/></r>)-";
    ASSERT_TRUE(document.parse(text.data()));
    const CurrentPool current(&document);
    document.macros["x"] = "2";
    document.processConditionals(document.root->firstChild->nextSibling, "/in", document.macros,
                                 true);
    EXPECT_EQ(treeText(document.root) + document.errors,
              "r(define[name=x value=1],a,include[filename=0]) ! error \"couldn't read //0\" in "
              "include file //0 line:0");
    EXPECT_EQ(document.macros["y"], "2");
    document.processConditionals(nullptr, "", document.macros, true);
}

TEST(Limits, AreMetFromBothSides)
{
    const std::string deep = " ! nested more than 3 levels deep";
    const std::string tooMany = " ! more than 4 rounds in ";
    const std::string loop = "<r><for index='i' start=";
    expectWalks(
        {"<a><b><c/></b></a> => a(b(c))", "<a><b><c><d/></c></b></a> => a(b(c(d)))" + deep,
         "<a><xmldef name='f'><b><xmlput name='f'/></b></xmldef><xmlput name='f'/></a> => "
         "a(b(xmlput[name=f]))" +
             deep,
         "<include filename='/b'/> => include[filename=/b] ! more than 0 nested includes at /b",
         loop + "'0' end='8' incr='2'><a/></for></r> => r(a,a,a,a)",
         loop + "'0' end='9' incr='2'><a/></for><b/></r> => r(b)" + tooMany + "<for>",
         loop + "'0' end='5' incr='4294967295'><a/></for></r> => r(a)",
         loop + "'2' end='4294967295' incr='2147483648'><a/></for></r> => r" + tooMany + "<for>",
         "<r><foreach x='1,2' y='1,2'><a/></foreach></r> => r(a,a,a,a)",
         "<r><foreach x='1,2' y='1,2,3'><a/></foreach></r> => r" + tooMany + "<foreach>",
         "<r><foreach x='1,2,3' y='1,2,3' z=','><a/></foreach></r> => r"},
        {.nestedLevels = 3, .nestedIncludes = 0, .loopRounds = 4});
    const std::string tooMuch = " ! directives bring more than 500 bytes into the document";
    expectWalks({loop + "'0' end='5' incr='1'><a/></for></r> => r(a,a,a,a,a)",
                 "<r><for index='i' start='0' end='9' incr='1'><a/></for></r> => r(for[index=i "
                 "start=0 end=9 incr=1](a))" +
                     tooMuch,
                 "<r><xmldef name='f'><xmlput name='f'/></xmldef><xmlput name='f'/></r> => "
                 "r(xmlput[name=f])" +
                     tooMuch},
                {.growth = 500});
    const std::string work = " ! directives make more than 1000000 steps of work";
    const std::string rounds =
        "' incr='1'><define name='x' expression='$(i)+1111'/></for></r> => r";
    expectWalks({loop + "'0' end='500" + rounds}, {.work = 1000000});
    Recorder document(false);
    document.limits.work = 1000000;
    EXPECT_TRUE(document.walk((loop + "'0' end='5000" + rounds).substr(0, 100)).ends_with(work));
}

}  // namespace

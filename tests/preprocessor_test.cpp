// The walk from within: errors that return, bounds, and what the command line does not reach.

#include "command.h"
#include "rows.h"
#include "treetext.h"
#include "xmlpp2.h"

namespace
{

/// A document whose errors return. A ' stands for a " in what it is made of.
class Recorder : public XMLPP2
{
public:
    explicit Recorder(std::string document, const Limits &bounds = {}, bool withText = false)
        : XMLPP2(withText)
    {
        limits = bounds;
        std::ranges::replace(document, '\'', '"');
        EXPECT_TRUE(parse(document.data()));
    }

    /// Leaves out what all messages begin with.
    void reportError(const std::string &message) override { errors += " ! " + message.substr(30); }

    /// The tree (see treeText()), then each error behind a " ! ".
    std::string walk(XMLNode *from, bool expand = true)
    {
        const CurrentPool current(this);
        processConditionals(from, directory + "/in.xml", macros, expand);
        const std::string tree = treeText(root);
        EXPECT_EQ(tree.find("<wrong parent>"), std::string::npos) << tree.substr(0, 999);
        return tree + errors;
    }

    MacroMap macros;
    std::string directory = "no";
    std::string errors;
};

TEST(Walk, ComesOutAsTheFileSays)
{
    const std::map<std::string, Limits> limits = {
        {"with 3 levels, no include, 4 rounds",
         {.nestedLevels = 3, .nestedIncludes = 0, .loopRounds = 4}},
        {"with no growth and no work but what a document has", {.growth = 0, .work = 0}},
        {"with an error that returns", {}},
        {"without expansion", {}},
    };
    expectRows("walks", [&](const std::string &heading, const std::string &text) {
        Recorder recorder(text, limits.at(heading));
        return recorder.walk(recorder.root, heading != "without expansion");
    });
}

TEST(Walk, PassesOverWhatIsNoElement)
{
    Recorder recorder("<r>1<!--c--><ifndef name='x'>2<![CDATA[$(x)]]></ifndef>"
                      "<switch name='x'>t<!--c--><default>3</default></switch>4</r>",
                      {}, true);
    EXPECT_EQ(recorder.walk(recorder.root), "r(#1,!c,#,#2,[$(x)],#,#,#3,#4)");
}

TEST(Walk, StartsAnywhereInAChain)
{
    Recorder recorder("<r><define name='x' value='1'/><ifdef name='x'><a/></ifdef>"
                      "<define name='y' value='$(x:0)'/><include filename='0'/></r>");
    recorder.macros["x"] = "2";
    recorder.directory = "";
    EXPECT_EQ(recorder.walk(recorder.root->firstChild->nextSibling),
              "r(define[name=x value=1],a,include[filename=0])"
              " ! error \"couldn't read //0\" in include file //0 line:0");
    EXPECT_EQ(recorder.macros["y"], "2");
    recorder.walk(nullptr);
}

std::string repeated(int times, const std::string &piece)
{
    std::string all;
    while (times-- > 0)
        all += piece;
    return all;
}

/// The errors of 1,000 times \a body within \a limits.
std::string errorsOf(const std::string &body, const Limits &limits)
{
    const ScratchDirectory scratch;
    scratch.write("a.xml", "<a/>");
    Recorder recorder("<r><xmldef name='f'/><xmldef name='text'><a v='" + repeated(1000, "x") +
                          "'/></xmldef><xmldef name='body'>" + body + "</xmldef>" +
                          "<for index='i' start='0' end='1000' incr='1'>" +
                          "<xmlput name='body'/></for></r>",
                      limits);
    recorder.directory = scratch.path();
    recorder.walk(recorder.root);
    return recorder.errors;
}

TEST(Limits, BoundWork)
{
    const std::string defaults = repeated(50, "$(u:") + repeated(50, ")");
    const std::string loop = "<for index='i' start='0' end='2' incr='1'>";
    // With how many million steps each is stopped; with twice as many it is not.
    const std::pair<std::string, unsigned> rows[] = {
        {"<xmlput name='text'/>", 9},
        {loop + "<a v='" + repeated(1000, "x") + "'/></for>", 20},
        {"<for index='i' start='0' end='4294767296' incr='4294567296'><![CDATA[]]></for>", 80},
        {"<include filename='a.xml'/>", 35},
        {"<include filename='" + repeated(500, "./") + "a.xml'/>", 280},
        {"<include filename='a.xml' inherit_attributes='" + repeated(500, "b;") + "'/>", 160},
        {"<a v='" + defaults + "'/>", 50},
        {loop + "<a v='" + defaults + "'/></for>", 110},
        {"<ifex expression='1==1" + repeated(500, "+1") + "'/>", 350},
        {"<xmlput name='f' macros='" + repeated(500, "a=1;") + "'/>", 110},
        {"<foreach a='" + repeated(500, "1,") + "' b=','/>", 60},
        {"<if x='" + repeated(500, "y,") + "'/>", 39},
    };
    for (const auto &[body, millions] : rows) {
        const std::uint64_t work = millions * std::uint64_t{1'000'000};
        EXPECT_EQ(errorsOf(body, {.work = work}),
                  " ! directives make more than " + std::to_string(work) + " steps of work")
            << body.substr(0, 99);
        EXPECT_EQ(errorsOf(body, {.work = 2 * work}), "") << body.substr(0, 99);
    }
}

TEST(Limits, BoundWhatDirectivesBringIn)
{
    for (const auto &[body, bytes] : {std::pair("<a/>", std::size_t{90'000}),
                                      {"<a v='$(u:1)'/>", std::size_t{110'000}},
                                      {"<include filename='a.xml'/>", std::size_t{180'000}}}) {
        EXPECT_EQ(errorsOf(body, {.growth = bytes}), " ! directives bring more than " +
                                                         std::to_string(bytes) +
                                                         " bytes into the document");
        EXPECT_EQ(errorsOf(body, {.growth = 2 * bytes}), "");
    }
}

}  // namespace

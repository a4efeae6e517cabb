#include "nextbyte.h"
#include "treetext.h"

namespace
{

/// Each case is a text, " => " and what it gives: its tree, or its error with the line, then what
/// it sets in the document.
void expectReadings(std::initializer_list<std::string> cases, bool keepComments = false,
                    bool lines = false)
{
    expectAll(cases, [=](std::string text) {
        XMLDocument document(keepComments);
        std::string result;
        if (!document.parse(text.data()))
            result = document.errorMessage + (" at " + std::to_string(document.errorLine) + " ");
        result += treeText(document.root, lines);
        result += document.version ? " version=" + std::string(document.version) : "";
        result += document.encoding ? " encoding=" + std::string(document.encoding) : "";
        return result + (document.doctype ? " doctype=" + std::string(document.doctype) : "");
    });
}

TEST(Reader, TakesTagsAndAttributes)
{
    expectReadings({
        "<a/> => a",
        "<a xy=\"1\" x=\"1\" y=\"2\" x=\"3\"/> => a[xy=1 x=3 y=2]",
        " \t\r\n\v\f<a  x = \"1\"\ny:-_z9=\"\"/> => a[x=1 y:-_z9=]",
        "<a checked b=\"1\"/> => a[b=1]",
        "<a x=y z=\"1\"/> => a[z=1]",
        "<a><b/><c><d/></c></a> => a(b,c(d))",
        "<a/><b/> => b",
        "<></> => ",
        "<1.5/> => bad tagName at 0 null",
        "<a/>\n<b\n\"/> => bad tagName at 2 a",
        "<a x=\"1/> => null",
        " => null",
    });
}

TEST(Reader, ClosesByABeginningOfTheName)
{
    expectReadings({
        "<abc></a> => abc",
        "<abc></abcd> => tagName mismatch at 0 null",
        "</x><a/></y> => a",
        "<a>\n<b></a\n> => tagName mismatch at 2 null",
        "<a / b=\"1\"><c/></a> => a(c)",
        "<a></a x><b/></a> => a(b)",
        "<a></a => null",
    });
}

TEST(Reader, ReadsDeclarationAndDoctype)
{
    expectReadings({
        "<?xml version=\"1.0\" encoding=\"&lt;\"?><a/> => a version=1.0 encoding=&lt;",
        "<?xml version = \"1.0\" standalone=\"yes\" x ?\n<a/> => a version=1.0",
        "<? version=\"1\"?><a/> => a version=1",
        "<?xmlx version=\"1\"?><a/> => a",
        "<?xml version='1.0'?><a/> => null",
        "<?xml version=\"1.0\"><a/> => a version=1.0",
        "<?xml version=\"1.0 => null version=1.0",
        "<!DOCTYPES p><a/> => a",
        "<!DOC p ><a/> => a doctype=p",
        "<!DOCTYPE><a/> => a doctype=",
    });
}

TEST(Reader, KeepsCDataAlways)
{
    expectReadings({
        "<a><![CDATA[x<y&amp;]]></a> => a([x<y&amp;])",
        "<a><! [ CDATA [x]]></a> => a([DATA [x])",
        "<![CDATA[x]]><a/> => a",
        "<a><![CDATA[x]]]></a>]]></a> => a([x]]]></a>])",
        "<a><![CDATA[x => null",
        "<a><! => null",
    });
}

TEST(Reader, KeepsCommentsAndDataOnRequest)
{
    expectReadings({
        "<!--x--><a>1<!-- c --><b/>2</a> => a(b)",
    });
    const bool keepComments = true;
    expectReadings(
        {
            "<!--x--><a>1<!-- c --><b/>2</a> => a(#1,! c ,#,b,#2)",
            "<a><!-- - --->--></a> => a(#,! - --->,#)",
            "<a><!-x><b/></a> => a(#,#x>,b,#)",
            "<a><?pi x?></a> => a(#,#x?>)",
            "<a>\r1&#13;&lt;\r\n</a> => a(#1\r<\n)",
        },
        keepComments);
}

TEST(Reader, DecodesReferences)
{
    expectReadings({
        "<a x=\"a&lt;b&gt;&quot;&amp;c\"/> => a[x=a<b>\"&c]",
        "<a x=\"&#65;&#x4a;&#x4A;&#321;&#4294967361;&#233;\"/> => a[x=AJJAA\xE9]",
        "<a x=\"&#a;&#X9;\r\n\"/> => a[x=\nS\r\n]",
        "<a x=\"&apos;&lt&LT;&;&\" y=\"1&#;2\"/> => a[x=&apos;&lt&LT;&;& y=1]",
        "<a x=\"&#6.5;&#65\" y=\"&#65;\"/> => a[x=&#6.5;&#65 y=A]",
    });
}

TEST(Reader, CountsLines)
{
    const bool lines = true;
    expectReadings(
        {
            "\n<a/> => a@0",
            " \n<a/> => a@1",
            "<r><a>\n</a></r> => r@0(a@0)",
            "<a\nx\n=\"\n\n\"><b\n/><![CDATA[\n]]></a\n><c/> => c@7",
            "<r><a\n\n/><a\nx\n=\"\n\"/>\n<b/></r> => r@0(a@0,a[x=\n]@2,b@6)",
        },
        false, lines);
    expectReadings({"<a>\n<!--\n-->\n</a> => a@0(#\n@1,!\n@1,#\n@3)"}, true, lines);
}

TEST(Reader, FindsRepeatedNamesAmongMany)
{
    std::string names;
    std::string values;
    for (int i = 0; i < 50; ++i) {
        names += " n" + std::to_string(i) + "=\"1\"";
        values += " n" + std::to_string(i) + (i % 20 == 3 ? "=2" : "=1");
    }
    const std::string tag = "<a" + names + R"( n3="2" n43="2" n23="2"/>)";
    const std::string tree = "a[" + values.substr(1) + "]";
    // What one tag had says nothing about the next.
    expectReadings({"<r>" + tag + tag + "</r> => r(" + tree + "," + tree + ")"});
}

TEST(Reader, TellsWhichElementsHaveNoReferences)
{
    for (const auto &[value, isLiteral] : {std::pair("1", true), {"$", false}, {"&#36;", false}}) {
        XMLDocument document(false);
        document.parse(("<a x=\"" + std::string(value) + "\"/>").data());
        EXPECT_EQ(static_cast<XMLElement *>(document.root)->isLiteral(), isLiteral) << value;
    }
}

TEST(NextByte, IsFoundHoweverFar)
{
    // Farther than what is searched at a time, with a NUL on the way.
    const std::string text = "&" + std::string(100'000, '\0') + "&";
    const char *at = text.data();
    NextByte next('&', text);
    EXPECT_FALSE(next.isBefore(at));
    EXPECT_TRUE(next.isBefore(at + 1));
    next.passTo(at + 1);
    EXPECT_FALSE(next.isBefore(at + 100'001));
    EXPECT_TRUE(next.isBefore(at + 100'002));
    next.passTo(at + 100'002);
    EXPECT_FALSE(next.isBefore(at + 100'002));
}

}  // namespace

#include "treetext.h"

namespace
{

/// What a text gives: its tree or its error with the line, then what it sets in the document.
std::string readText(std::string text, bool keepComments = false, bool lines = false)
{
    XMLDocument document(keepComments);
    std::string result;
    if (document.parse(text.data()))
        result = treeText(document.root, lines);
    else
        result = document.errorMessage + (" at " + std::to_string(document.errorLine)) +
                 (document.root ? " after " + treeText(document.root) : "");
    for (const auto &[title, value] :
         {std::pair(" version=", document.version), std::pair(" encoding=", document.encoding),
          std::pair(" doctype=", document.doctype)})
        result += value ? title + std::string(value) : "";
    return result;
}

void expectReadings(std::initializer_list<std::string> cases, bool keepComments = false,
                    bool lines = false)
{
    expectAll(cases, [=](const std::string &text) { return readText(text, keepComments, lines); });
}

TEST(Reader, TakesTagsAndAttributes)
{
    expectReadings({"<a/> => a", R"(<a x="1" y="2" x="3"/> => a[x=3 y=2])",
                    " \t\r\n\v\f<a  x = \"1\"\ny:-_z9=\"\"/> => a[x=1 y:-_z9=]",
                    R"(<a checked b="1"/> => a[b=1])", R"(<a x=y z="1"/> => a[z=1])",
                    R"(<a x="1"y="2"/> => a[x=1 y=2])", R"(<a x="<>/'"/> => a[x=<>/'])",
                    "<a><b/><c><d/></c></a> => a(b,c(d))", "<a/><b/> => b", "<></> => ",
                    "<1.5/> => bad tagName at 0", "<a x='1'/> => bad tagName at 0",
                    "<a x=1/> => bad tagName at 0", "<a/>\n<b\n\"/> => bad tagName at 2 after a",
                    R"(<a x="1/> => null)", R"(<a x="1" => null)"});
}

TEST(Reader, ClosesByABeginningOfTheName)
{
    expectReadings({"<abc></a> => abc", "<abc></abc > => abc", "<abc></> => abc",
                    "<abc></abcd> => tagName mismatch at 0",
                    "<a>\n<b></a\n> => tagName mismatch at 2", "<a></b> => tagName mismatch at 0",
                    "</x><a/></y> => a", R"(<a / b="1"><c/></a> => a(c))",
                    "<a></a x><b/></a> => a(b)", "<a><b><c/></b> => null"});
}

TEST(Reader, ReadsDeclarationAndDoctype)
{
    expectReadings({R"(<?xml version="1.0" encoding="&lt;"?><a/> => a version=1.0 encoding=&lt;)",
                    "<?xml version = \"1.0\" standalone=\"yes\" x ?\n<a/> => a version=1.0",
                    R"(<?xm version="1"?><a/> => a version=1)",
                    R"(<? version="1"?><a/> => a version=1)", R"(<?xmlx version="1"?><a/> => a)",
                    "<?xml version='1.0'?><a/> => null", "<a/><?xml version=1?> => null",
                    R"(<?xml version="1.0"><a/> => a version=1.0)",
                    R"(<?xml version="1.0 => null version=1.0)", "<!DOCTYPE p><a/> => a doctype=p",
                    "<!DOC p ><a/> => a doctype=p", "<!DOCTYPES p><a/> => a",
                    R"(<!DOCTYPE html PUBLIC "x" "y"><a/> => a)",
                    "<!DOCTYPE><a/> => a doctype=", "<!DOCTYPE a [<!ELEMENT a (b)>]><a/> => a"});
}

TEST(Reader, KeepsCDataAlways)
{
    expectReadings({"<a><![CDATA[x<y&amp;]]></a> => a([x<y&amp;])", "<a><![CDATA[]]></a> => a([])",
                    "<a><! [ CDATA [x]]></a> => a([DATA [x])", "<a><![CDATA[x => null",
                    "<a><![CDATA[x]]]></a>]]></a> => a([x]]]></a>])", "<![CDATA[x]]><a/> => a",
                    "<a><![CDATA[x]>]]></a> => a([x]>])", "<a><! => null", "<a><![CDATA => null"});
}

TEST(Reader, KeepsCommentsAndDataOnRequest)
{
    const std::string mixed = "<!--x--><a>1<!-- c --><b/>2</a> => ";
    expectReadings({mixed + "a(b)", "<a><!-- > --><b/></a> => a(b)"});
    expectReadings({mixed + "a(#1,! c ,#,b,#2)", "<a><b/></a> => a(#,b,#)",
                    "<a><!----></a> => a(#,!,#)", "<a><!-- - --->--></a> => a(#,! - --->,#)",
                    "<a><!-x><b/></a> => a(#,#x>,b,#)", "<a><?pi x?></a> => a(#,#x?>)",
                    "<a>\r1&#13;&lt;\r\n</a> => a(#1\r<\n)"},
                   true);
}

TEST(Reader, DecodesReferences)
{
    expectReadings({R"(<a x="a&lt;b&gt;&quot;&amp;c"/> => a[x=a<b>"&c])",
                    R"(<a x="&#65;&#x41;&#x4a;&#x4A;&#321;&#4294967361;"/> => a[x=AAJJAA])",
                    "<a x=\"&#a;&#X9;\r\n\"/> => a[x=\nS\r\n]",
                    R"(<a x="&apos;&lt&LT;&;&"/> => a[x=&apos;&lt&LT;&;&])",
                    R"(<a x="&#6.5;&#65" y="&#65;"/> => a[x=&#6.5;&#65 y=A])",
                    R"(<a x="1&#;2" y="1&#x;2"/> => a[x=1 y=1])"});
}

TEST(Reader, CountsLines)
{
    expectReadings({"\n<a/> => a@0", " \n<a/> => a@1", "<a>\n<b/></a> => a@0(b@1)",
                    "<a\nx=\"\n\"><b\n/><![CDATA[\n]]></a> => a[x=\n]@0(b@2,[\n]@3)"},
                   false, true);
    expectReadings({"<a>\n<!--\n-->\n</a> => a@0(#\n@1,!\n@1,#\n@3)"}, true, true);
}

TEST(Reader, FindsRepeatedNamesAmongMany)
{
    std::string text = "<a";
    std::string expected = "a";
    for (int i = 0; i < 100; ++i) {
        const std::string name = "n" + std::to_string(i);
        text += " " + name + "=\"1\"";
        expected += (i ? " " : "[") + name + (i == 5 || i == 50 || i == 99 ? "=2" : "=1");
    }
    text += R"( n5="2" n50="2" n99="2"/>)";
    // What one tag had says nothing about the next.
    expectReadings({"<r>" + text + text + "</r> => r(" + expected + "]," + expected + "])"});
}

TEST(Reader, AddsToADocument)
{
    XMLDocument document(false);
    std::string first = R"(<?xml version="1"?><!DOCTYPE d><a/>)";
    std::string second = R"(<?xml encoding="e"?><b>)";
    EXPECT_TRUE(document.parse(first.data()));
    const XMLNode *root = document.root;
    EXPECT_TRUE(document.parse(second.data()));
    EXPECT_EQ(treeText(root) + document.version + document.encoding + document.doctype, "a1ed");
    EXPECT_EQ(document.root, nullptr);
}

}  // namespace

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
    expectReadings({"<a/> => a", R"(<a xy="1" x="1" y="2" x="3"/> => a[xy=1 x=3 y=2])",
                    " \t\r\n\v\f<a  x = \"1\"\ny:-_z9=\"\"/> => a[x=1 y:-_z9=]",
                    R"(<a checked b="1"/> => a[b=1])", R"(<a x=y z="1"/> => a[z=1])",
                    R"(<a x="1"y="<>/'"/> => a[x=1 y=<>/'])", "<a><b/><c><d/></c></a> => a(b,c(d))",
                    "<a/><b/> => b", "<></> => ", "<1.5/> => bad tagName at 0",
                    "<a x='1'/> => bad tagName at 0", "<a/>\n<b\n\"/> => bad tagName at 2 after a",
                    R"(<a x="1/> => null)", R"(<a x="1" => null)"});
}

TEST(Reader, ClosesByABeginningOfTheName)
{
    expectReadings({"<abc></a> => abc", "<abc></abc > => abc", "<abc></> => abc",
                    "<abc></abcd> => tagName mismatch at 0", "</x><a/></y> => a",
                    "<a>\n<b></a\n> => tagName mismatch at 2", R"(<a / b="1"><c/></a> => a(c))",
                    "<a></a x><b/></a> => a(b)", "<a><b><c/></b> => null", "<a></a => null"});
}

TEST(Reader, ReadsDeclarationAndDoctype)
{
    expectReadings({R"(<?xml version="1.0" encoding="&lt;"?><a/> => a version=1.0 encoding=&lt;)",
                    "<?xml version = \"1.0\" standalone=\"yes\" x ?\n<a/> => a version=1.0",
                    R"(<? version="1"?><a/> => a version=1)", R"(<?xmlx version="1"?><a/> => a)",
                    "<?xml version='1.0'?><a/> => null", "<a/><?xml version=1?> => null",
                    R"(<?xml version="1.0"><a/> => a version=1.0)", "<!DOCTYPES p><a/> => a",
                    R"(<?xml version="1.0 => null version=1.0)", "<!DOC p ><a/> => a doctype=p",
                    R"(<!DOCTYPE html PUBLIC "x" "y"><a/> => a)", "<!DOCTYPE><a/> => a doctype="});
}

TEST(Reader, KeepsCDataAlways)
{
    expectReadings({"<a><![CDATA[x<y&amp;]]></a> => a([x<y&amp;])", "<a><![CDATA[x => null",
                    "<a><! [ CDATA [x]]></a> => a([DATA [x])", "<![CDATA[x]]><a/> => a",
                    "<a><![CDATA[x]]]></a>]]></a> => a([x]]]></a>])", "<a><! => null",
                    "<a><![CDATA[x]>]]></a> => a([x]>])"});
}

TEST(Reader, KeepsCommentsAndDataOnRequest)
{
    const std::string mixed = "<!--x--><a>1<!-- c --><b/>2</a> => ";
    expectReadings({mixed + "a(b)", "<a><!-- > --><b/></a> => a(b)"});
    expectReadings({mixed + "a(#1,! c ,#,b,#2)", "<a><!-- - --->--></a> => a(#,! - --->,#)",
                    "<a><!-x><b/></a> => a(#,#x>,b,#)", "<a><?pi x?></a> => a(#,#x?>)",
                    "<a>\r1&#13;&lt;\r\n</a> => a(#1\r<\n)"},
                   true);
}

TEST(Reader, DecodesReferences)
{
    expectReadings({R"(<a x="a&lt;b&gt;&quot;&amp;c"/> => a[x=a<b>"&c])",
                    R"(<a x="&#65;&#x4a;&#x4A;&#321;&#4294967361;"/> => a[x=AJJAA])",
                    "<a x=\"&#a;&#X9;\r\n\"/> => a[x=\nS\r\n]",
                    R"(<a x="&apos;&lt&LT;&;&" y="1&#;2"/> => a[x=&apos;&lt&LT;&;& y=1])",
                    R"(<a x="&#6.5;&#65" y="&#65;"/> => a[x=&#6.5;&#65 y=A])"});
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
    std::string tag = "<a";
    std::string expected = "a";
    for (int i = 0; i < 100; ++i) {
        tag += " n" + std::to_string(i % 90) + "=\"" + std::to_string(i) + "\"";
        if (i < 90)
            expected +=
                (i ? " n" : "[n") + std::to_string(i) + "=" + std::to_string(i < 10 ? i + 90 : i);
    }
    // What one tag had says nothing about the next.
    expectReadings({"<r>" + tag + "/>" + tag + "/></r> => r(" + expected + "]," + expected + "])"});
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

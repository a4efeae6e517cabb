#include "treetext.h"

#include <gtest/gtest.h>

namespace
{

/// What a text gives: its tree or its error with the line, then what it sets in the document.
std::string readText(std::string text, bool keepComments, bool lines = false)
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

struct Reading {
    const char *text;
    const char *expected;
};

void expectReadings(std::initializer_list<Reading> readings, bool keepComments = false,
                    bool lines = false)
{
    for (const Reading &reading : readings)
        EXPECT_EQ(readText(reading.text, keepComments, lines), reading.expected) << reading.text;
}

TEST(Reader, TakesTagsAndAttributes)
{
    expectReadings({
        {"<a/>", "a"},
        {" \t\r\n\v\f<a  x = \"1\"\ny:-_z9=\"\"/>", "a[x=1 y:-_z9=]"},
        {"<a x=\"1\" y=\"2\" x=\"3\"/>", "a[x=3 y=2]"},
        {"<a checked b=\"1\"/>", "a[b=1]"},
        {"<a x=y z=\"1\"/>", "a[z=1]"},
        {"<a x=\"1\"y=\"2\"/>", "a[x=1 y=2]"},
        {"<a x=\"<>/'\"/>", "a[x=<>/']"},
        {"<a><b/><c><d/></c></a>", "a(b,c(d))"},
        {"<a/><b/>", "b"},
        {"<></>", ""},
        {"<1.5/>", "bad tagName at 0"},
        {"<a x='1'/>", "bad tagName at 0"},
        {"<a x=1/>", "bad tagName at 0"},
        {"<a/>\n<b\n\"/>", "bad tagName at 2 after a"},
        {"<a x=\"1/>", "null"},
        {"<a x=\"1\"", "null"},
    });
}

TEST(Reader, ClosesByABeginningOfTheName)
{
    expectReadings({
        {"<abc></a>", "abc"},
        {"<abc></abc >", "abc"},
        {"<abc></>", "abc"},
        {"<abc></abcd>", "tagName mismatch at 0"},
        {"<a>\n<b></a\n>", "tagName mismatch at 2"},
        {"<a></b>", "tagName mismatch at 0"},
        {"</x><a/></y>", "a"},
        {"<a / b=\"1\"><c/></a>", "a(c)"},
        {"<a></a x><b/></a>", "a(b)"},
        {"<a><b><c/></b>", "null"},
    });
}

TEST(Reader, ReadsDeclarationAndDoctype)
{
    expectReadings({
        {"<?xml version=\"1.0\" encoding=\"&lt;\"?><a/>", "a version=1.0 encoding=&lt;"},
        {"<?xml version = \"1.0\" standalone=\"yes\" x ?\n<a/>", "a version=1.0"},
        {"<?xm version=\"1\"?><a/>", "a version=1"},
        {"<? version=\"1\"?><a/>", "a version=1"},
        {"<?xmlx version=\"1\"?><a/>", "a"},
        {"<?xml version='1.0'?><a/>", "null"},
        {"<a/><?xml version=1?>", "null"},
        {"<?xml version=\"1.0\"><a/>", "a version=1.0"},
        {"<?xml version=\"1.0", "null version=1.0"},
        {"<!DOCTYPE project><a/>", "a doctype=project"},
        {"<!DOC p ><a/>", "a doctype=p"},
        {"<!DOCTYPES p><a/>", "a"},
        {"<!DOCTYPE html PUBLIC \"x\" \"y\"><a/>", "a"},
        {"<!DOCTYPE a [<!ELEMENT a (b)>]><a/>", "a"},
        {"<!DOCTYPE><a/>", "a doctype="},
    });
}

TEST(Reader, KeepsCDataAlways)
{
    expectReadings({
        {"<a><![CDATA[x<y&amp;]]></a>", "a([x<y&amp;])"},
        {"<a><! [ CDATA [x]]></a>", "a([DATA [x])"},
        {"<a><![CDATA[x]]]></a>]]></a>", "a([x]]]></a>])"},
        {"<a><![CDATA[x]>]]></a>", "a([x]>])"},
        {"<a><![CDATA[]]></a>", "a([])"},
        {"<![CDATA[x]]><a/>", "a"},
        {"<a><![CDATA[x", "null"},
        {"<a><!", "null"},
        {"<a><![CDATA", "null"},
    });
}

TEST(Reader, KeepsCommentsAndDataOnRequest)
{
    constexpr const char *mixed = "<!--x--><a>1<!-- c --><b/>2</a>";
    expectReadings({{mixed, "a(b)"}, {"<a><!-- > --><b/></a>", "a(b)"}});
    expectReadings(
        {
            {mixed, "a(#1,! c ,#,b,#2)"},
            {"<a><b/></a>", "a(#,b,#)"},
            {"<a><!----></a>", "a(#,!,#)"},
            {"<a><!-- - --->--></a>", "a(#,! - --->,#)"},
            {"<a><!-x><b/></a>", "a(#,#x>,b,#)"},
            {"<a>\r1&#13;&lt;\r\n</a>", "a(#1\r<\n)"},
            {"<a><?pi x?></a>", "a(#,#x?>)"},
        },
        true);
}

TEST(Reader, DecodesReferences)
{
    expectReadings({
        {"<a x=\"a&lt;b&gt;&quot;&amp;c\"/>", "a[x=a<b>\"&c]"},
        {"<a x=\"&#65;&#x41;&#x4a;&#x4A;\"/>", "a[x=AAJJ]"},
        {"<a x=\"&#321;&#4294967361;\"/>", "a[x=AA]"},
        {"<a x=\"&#a;&#X9;\"/>", "a[x=\nS]"},
        {"<a x=\"&apos;&lt&LT;&;&\"/>", "a[x=&apos;&lt&LT;&;&]"},
        {"<a x=\"&#6.5;&#65\" y=\"&#65;\"/>", "a[x=&#6.5;&#65 y=A]"},
        {"<a x=\"1&#;2\" y=\"1&#x;2\"/>", "a[x=1 y=1]"},
        {"<a x=\"\r\n\"/>", "a[x=\r\n]"},
    });
}

TEST(Reader, CountsLines)
{
    expectReadings(
        {
            {"\n<a/>", "a@0"},
            {" \n<a/>", "a@1"},
            {"<a>\n<b/></a>", "a@0(b@1)"},
            {"<a\nx=\"\n\"><b\n/><![CDATA[\n]]></a>", "a[x=\n]@0(b@2,[\n]@3)"},
        },
        false, true);
    expectReadings({{"<a>\n<!--\n-->\n</a>", "a@0(#\n@1,!\n@1,#\n@3)"}}, true, true);
}

TEST(Reader, FindsRepeatedNamesAmongMany)
{
    std::string text = "<a";
    std::string expected = "a[";
    for (int i = 0; i < 100; ++i) {
        text += " n" + std::to_string(i) + "=\"1\"";
        expected +=
            (i ? " n" : "n") + std::to_string(i) + (i == 5 || i == 50 || i == 99 ? "=2" : "=1");
    }
    EXPECT_EQ(readText(text + " n5=\"2\" n50=\"2\" n99=\"2\"/>", false), expected + "]");
    // What one tag had says nothing about the next.
    EXPECT_EQ(readText("<r>" + text + "/><b n5=\"3\" n5=\"4\"/></r>", false).substr(0, 4), "r(a[");
    EXPECT_TRUE(
        readText("<r>" + text + "/><b n5=\"3\" n5=\"4\"/></r>", false).ends_with(",b[n5=4])"));
}

TEST(Reader, AddsToADocument)
{
    XMLDocument document(false);
    std::string first = "<?xml version=\"1\"?><!DOCTYPE d><a/>";
    std::string second = "<?xml encoding=\"e\"?><b>";
    EXPECT_TRUE(document.parse(first.data()));
    const XMLNode *root = document.root;
    EXPECT_TRUE(document.parse(second.data()));
    EXPECT_EQ(document.root, nullptr);
    EXPECT_STREQ(document.version, "1");
    EXPECT_STREQ(document.encoding, "e");
    EXPECT_STREQ(document.doctype, "d");
    EXPECT_EQ(treeText(root), "a");
}

}  // namespace

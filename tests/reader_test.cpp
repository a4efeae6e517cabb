#include "rows.h"
#include "treetext.h"

namespace
{

/// The tree of \a text, or its error with the line and what was read before it, then what it sets in
/// the document.
std::string readingOf(std::string text, bool withText = false, bool withLines = false)
{
    XMLDocument document(withText);
    std::string result;
    if (!document.parse(text.data()))
        result = document.errorMessage + (" at " + std::to_string(document.errorLine) + " ");
    result += treeText(document.root, withLines);
    result += document.version ? " version=" + std::string(document.version) : "";
    result += document.encoding ? " encoding=" + std::string(document.encoding) : "";
    return result + (document.doctype ? " doctype=" + std::string(document.doctype) : "");
}

TEST(Reader, TakesWhatIsWrittenInManyWays)
{
    expectRows("readings", [](const std::string &heading, const std::string &text) {
        return readingOf(text, heading == "with text and comments");
    });
}

TEST(Reader, TakesEveryByte)
{
    EXPECT_EQ(readingOf(""), "null");
    EXPECT_EQ(readingOf(" \t\r\n\v\f<a  x = \"1\"\ny:-_z9=\"\"/>"), "a[x=1 y:-_z9=]");
    EXPECT_EQ(readingOf("<a x=\"&#65;&#x4a;&#x4A;&#x9;&#321;&#4294967361;&#233;\"/>"),
              "a[x=AJJ\tAA\xE9]");
    EXPECT_EQ(readingOf("<a x=\"&#a;&#X9;\r\n\"/>"), "a[x=\nS\r\n]");
    EXPECT_EQ(readingOf("<a>\r1&#13;&lt;\r\n</a>", true), "a(#1\r<\n)");
}

TEST(Reader, CountsLines)
{
    const auto linesOf = [](const char *text, bool withText = false) {
        return readingOf(text, withText, true);
    };
    EXPECT_EQ(linesOf("\n<a/>"), "a@0");
    EXPECT_EQ(linesOf(" \n<a/>"), "a@1");
    EXPECT_EQ(linesOf("<a>\n<b></a\n>"), "tagName mismatch at 2 null");
    EXPECT_EQ(linesOf("<a/>\n<b\n\"/>"), "bad tagName at 2 a@0");
    EXPECT_EQ(linesOf("<a\nx\n=\"\n\n\"><b\n/><![CDATA[\n]]></a\n><c/>"), "c@7");
    EXPECT_EQ(linesOf("<r><a\n\n/><a\nx\n=\"\n\"/>\n<b/></r>"), "r@0(a@0,a[x=\n]@2,b@6)");
    EXPECT_EQ(linesOf("<a>\n<!--\n-->\n</a>", true), "a@0(#\n@1,!\n@1,#\n@3)");
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
    EXPECT_EQ(readingOf("<r>" + tag + tag + "</r>"), "r(" + tree + "," + tree + ")");
}

TEST(Reader, FindsReferencesHoweverFar)
{
    const std::string far(100'000, 'x');
    EXPECT_EQ(readingOf("<a x=\"&amp;" + far + "\" y=\"&amp;" + far + "&amp;\"/>"),
              "a[x=&" + far + " y=&" + far + "&]");
}

}  // namespace

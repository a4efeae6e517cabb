#include "treetext.h"
#include "written.h"

namespace
{

std::string rewritten(std::string text, int indent, bool keepComments = false)
{
    XMLDocument document(keepComments);
    EXPECT_TRUE(document.parse(text.data()));
    return written([&](FILE *stream) {
        EXPECT_TRUE(document.write(stream, indent));
        EXPECT_EQ(document.indent, indent);
    });
}

TEST(Writer, IndentsElementsAndDoesNotEndTheLineOfText)
{
    const char *text = "<a><b x=\"1\"><c/></b><d/></a>";
    EXPECT_EQ(rewritten(text, 2), "<a>\n  <b x=\"1\">\n    <c/>\n  </b>\n  <d/>\n</a>\n");
    EXPECT_EQ(rewritten(text, 0), text);
    EXPECT_EQ(rewritten("<a><b/></a>", -1), "<a>\n<b/>\n</a>\n");
    for (const int indent : {16, 17})
        EXPECT_EQ(rewritten("<a><b/></a>", indent),
                  "<a>\n" + std::string(static_cast<std::size_t>(indent), ' ') + "<b/>\n</a>\n");
    EXPECT_EQ(rewritten("<a><![CDATA[<&]]><b/><!--<&-->&lt;</a>", 1, true),
              "<a>\n  <![CDATA[<&]]>  <b/>\n  <!--<&--> &lt;</a>\n");
}

TEST(Writer, WritesDeclarationAndDoctype)
{
    EXPECT_EQ(rewritten(R"(<?xml version="1.0" encoding="&"?><!DOCTYPE d><a/>)", 2),
              "<?xml  version=\"1.0\" encoding=\"&\" ?>\n<!DOCTYPE d>\n<a/>\n");
    EXPECT_EQ(rewritten(R"(<? encoding="e"?><!D>)", 2), "<?xml  encoding=\"e\" ?>\n<!DOCTYPE >\n");
}

TEST(Writer, EscapesAllButPrintableAscii)
{
    const auto escaped = [](const char *text) {
        return written([&](FILE *stream) { XMLDocument::writeEscaped(stream, text); });
    };
    EXPECT_EQ(escaped("a<b & \"c\">'"), "a&lt;b &amp; &quot;c&quot;&gt;'");
    EXPECT_EQ(escaped("\x01\t\n\r\x1F ~\x7F\x80\xE9\xFF"),
              "&#x1;&#x9;&#xa;&#xd;&#x1f; ~&#x7f;&#x80;&#xe9;&#xff;");
    EXPECT_EQ(escaped(nullptr), "");
}

TEST(Writer, HandsOverWhatIsLongerThanItsBuffer)
{
    const std::string value(200'000, '<');
    std::string escaped;
    for (std::size_t i = 0; i < value.size(); ++i)
        escaped += "&lt;";
    const std::string name(70'000, 'n');
    const std::string spaces(140'000, ' ');
    XMLDocument document(false);
    const CurrentPool current(&document);
    XMLElement element(name.c_str());
    element.setAttribute("a", value.c_str());
    element.setAttribute("b", nullptr);
    document.indent = 70'000;
    const auto nodeText = [&](const XMLNode *node) {
        return written([&](FILE *stream) { document.writeNode(stream, node, 2); });
    };
    EXPECT_EQ(nodeText(&element), spaces + "<" + name + " a=\"" + escaped + "\" b=\"\"/>\n");
    // No node, and a node of no kind, have nothing but their indentation.
    const XMLNode node;
    EXPECT_EQ(nodeText(nullptr), spaces);
    EXPECT_EQ(nodeText(&node), spaces);
}

}  // namespace

#include "treetext.h"
#include "written.h"

#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

std::string rewritten(std::string text, int indent, bool keepComments = false)
{
    XMLDocument document(keepComments);
    EXPECT_TRUE(document.parse(text.data()));
    return written([&](FILE *stream) { EXPECT_TRUE(document.write(stream, indent)); });
}

TEST(Writer, IndentsElementsAndDoesNotEndTheLineOfText)
{
    const char *tree = "<a><b x=\"1\"><c/></b><d/></a>";
    EXPECT_EQ(rewritten(tree, 2), "<a>\n  <b x=\"1\">\n    <c/>\n  </b>\n  <d/>\n</a>\n");
    EXPECT_EQ(rewritten(tree, 0), tree);
    EXPECT_EQ(rewritten("<a><b/></a>", -1), "<a>\n<b/>\n</a>\n");
    EXPECT_EQ(rewritten("<a><b/></a>", 17), "<a>\n                 <b/>\n</a>\n");
    EXPECT_EQ(rewritten("<a><![CDATA[<&]]><b/></a>", 1), "<a>\n <![CDATA[<&]]> <b/>\n</a>\n");
    EXPECT_EQ(rewritten("<a><!--<&-->&lt;</a>", 1, true), "<a>\n  <!--<&--> &lt;</a>\n");
    EXPECT_EQ(rewritten("<?xml version=\"1\" encoding=\"&\"?><!DOCTYPE d><a/>", 2),
              "<?xml  version=\"1\" encoding=\"&\" ?>\n<!DOCTYPE d>\n<a/>\n");
}

TEST(Writer, EscapesAllButPrintableAscii)
{
    const auto escaped = [](const char *text) {
        return written([&](FILE *stream) { XMLDocument::writeEscaped(stream, text); });
    };
    EXPECT_EQ(escaped("a<b & \"c\">'"), "a&lt;b &amp; &quot;c&quot;&gt;'");
    EXPECT_EQ(escaped("\x01\x10\t\n\r\x1F ~\x7F\x80\xE9\xFF"),
              "&#x1;&#x10;&#x9;&#xa;&#xd;&#x1f; ~&#x7f;&#x80;&#xe9;&#xff;");
    EXPECT_EQ(escaped(nullptr), "");
}

/// The page behind the text cannot be read.
TEST(Writer, EscapesEachByteWhereverItStands)
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    char *const pages = static_cast<char *>(
        mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_EQ(mprotect(pages + page, page, PROT_NONE), 0);
    for (const std::size_t length : {1U, 7U, 8U, 9U, 15U, 16U, 17U, 33U, 100U}) {
        for (const std::size_t behind : {0U, 1U, 14U, 15U, 16U, 50U}) {
            for (std::size_t at = 0; at < length; ++at) {
                std::string text(length, '~');
                text[at] = '<';
                char *const start = pages + page - behind - length - 1;
                std::memcpy(start, text.c_str(), length + 1);
                EXPECT_EQ(written([&](FILE *stream) { XMLDocument::writeEscaped(stream, start); }),
                          text.replace(at, 1, "&lt;"));
            }
        }
    }
    munmap(pages, 2 * page);
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
    const auto nodeText = [&](const XMLNode *node, int indent) {
        document.indent = indent;
        return written([&](FILE *stream) { document.writeNode(stream, node, 2); });
    };
    EXPECT_EQ(nodeText(&element, 70'000),
              spaces + "<" + name + " a=\"" + escaped + "\" b=\"\"/>\n");
    // No node, and a node of no kind, have nothing but their indentation.
    const XMLNode node;
    EXPECT_EQ(nodeText(nullptr, 70'000), spaces);
    EXPECT_EQ(nodeText(&node, 70'000), spaces);
    for (XMLNode *child : std::initializer_list<XMLNode *>{
             new XMLData(nullptr), new XMLComment(nullptr), new XMLCDATASection(nullptr)})
        element.appendChild(child);
    element.setName("a");
    element.removeAttribute("a");
    EXPECT_EQ(nodeText(&element, 0), "<a b=\"\"><!----><![CDATA[]]></a>");
}

}  // namespace

// Documents that ask for much. Each ends soon and in little memory, on a small stack at worst with
// the error that it is nested too deep.

#include "command.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

#if defined(XMLPP_SANITIZED)
const std::vector<std::string> stacks = {"65536"};
#else
const std::vector<std::string> stacks = {"8192", "1024", "256"};
#endif
#if defined(XMLPP_TIMED)
const std::string bounds = "ulimit -t 1; ulimit -v 262144; ";
constexpr int many = 200'000;
#else
const std::string bounds;
constexpr int many = 10'000;
#endif

/// In the texts a ' stands for a ", and an @ for the number of the repetition.
struct Hostile {
    const char *name;
    const char *beginning;
    const char *opening;  ///< repeated
    const char *middle;
    const char *closing;  ///< repeated as often
    const char *end;
    int times = many;
    const char *error = "";
};

const char tooDeep[] = "XmlPP::processConditionals(): nested more than 5000 levels deep\n";
const char loop[] = "<r><for index='i' start='0' end='2' incr='1'>";
const char manyMacros[] =
    "<r><for index='i' start='0' end='50000' incr='1'><define name='b$(i)' value='1'/></for>";

const Hostile documents[] = {
    {"Deep", "<r>", "<if m='1'>", "<a/>", "</if>", "</r>", 4998},
    {"TooDeep", "<r>", "<if m='1'>", "<a/>", "</if>", "</r>", many, tooDeep},
    {"Copies", loop, "<a>", "", "</a>", "</for></r>", many, tooDeep},
    {"Attributes", "<a", " a@=''", "", "", "/>"},
    {"References", "<a v='", "$(m)&lt;&#$(", "", "", "'/>"},
    {"Defaults", "<a v='", "$(u:", "", ")", "'/>"},
    {"Parentheses", "<r><ifex expression='", "(", "1", ")", "'/></r>"},
    {"Loops", "<r>", "<foreach>", "<a/>", "</foreach>", "</r>", 1500},
    {"LoopsAroundPuts", "<r><xmldef name='f'>", "<foreach>", "<xmlput name='f'/>", "</foreach>",
     "</xmldef><xmlput name='f'/></r>", 20, tooDeep},
    {"Lists", "<r><foreach", " a@='1'", "><a v='$(a1)'/></foreach>", "", "</r>"},
    {"Macros", "<r><xmldef name='f'/><xmlput name='f' macros='", "a@=@;", "", "", "'/></r>"},
    {"Conditions", "<r>", "<ifndef name='a@'><if m='1'><a/></if></ifndef>", "", "", "</r>"},
    {"Fragments", "<r><xmldef name='f'/>", "<xmlput name='f' macros='a@=1'/>", "", "", "</r>"},
    {"Levels", manyMacros, "<a><define name='b1' value='2'/>", "", "</a>", "</r>", 4000},
    {"Rounds", "<r><a><for index='i' start='0' end='3000000' incr='1'><a v='$(i)'/></for></a>", "",
     "", "", "</r>"},
};

std::string repeated(const char *piece, int times)
{
    std::string text;
    for (int number = 0; number < times; ++number) {
        for (const char *c = piece; *c != '\0'; ++c)
            text += *c == '@' ? std::to_string(number) : std::string(1, *c);
    }
    return text;
}

using Document = testing::TestWithParam<Hostile>;

TEST_P(Document, EndsWithinBounds)
{
    const auto &[name, beginning, opening, middle, closing, end, times, error] = GetParam();
    std::string text =
        beginning + repeated(opening, times) + middle + repeated(closing, times) + end;
    std::ranges::replace(text, '\'', '"');
    const ScratchDirectory scratch;
    scratch.write("in.xml", text);
    for (const std::string &stack : stacks) {
        std::string command = bounds;
        command.append("ulimit -s ").append(stack);
        command.append("; exec " XMLPP_COMMAND " in.xml out.xml m=1");
        const auto [status, prints] = runCommand({"/bin/sh", "-c", command}, scratch.path());
        if (stack == stacks.front() || !prints.ends_with(" levels deep\n")) {
            EXPECT_EQ(prints, error) << stack;
        }
        EXPECT_EQ(status, prints.empty() ? 0 : 1) << stack;
    }
}

INSTANTIATE_TEST_SUITE_P(Hostile, Document, testing::ValuesIn(documents),
                         [](const auto &document) { return document.param.name; });

}  // namespace

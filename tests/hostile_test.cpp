// Documents that ask for much. Each ends soon and in little memory, on a small stack at worst with
// the error that it is nested too deep.

#include "command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace
{

#ifndef __has_feature
#define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
const std::vector<std::string> stacks = {"65536"};
#else
const std::vector<std::string> stacks = {"8192", "1024", "256"};
#endif
#if defined(XMLPP_TIMED)
const std::string bounds = "ulimit -t 1; ulimit -v 262144; ";
constexpr int times = 200'000;
#else
const std::string bounds;
constexpr int times = 10'000;
#endif

/// A ' stands for a ", an @ for the number of the repetition.
struct Hostile {
    const char *name;
    const char *beginning;
    const char *opening;  ///< repeated
    const char *middle;
    const char *closing;  ///< repeated as often
    const char *end;
    const char *error = "";
    int repetitions = times;
};

/// What ctest calls the test.
void PrintTo(const Hostile &hostile, std::ostream *stream)
{
    *stream << hostile.name;
}

std::string documentOf(const Hostile &hostile)
{
    std::string text = hostile.beginning;
    for (const char *piece : {hostile.opening, hostile.closing}) {
        for (int number = 0; number < hostile.repetitions; ++number) {
            for (const char *c = piece; *c; ++c)
                text += *c == '@' ? std::to_string(number) : std::string(1, *c);
        }
        text += piece == hostile.opening ? hostile.middle : hostile.end;
    }
    std::ranges::replace(text, '\'', '"');
    return text;
}

using Document = testing::TestWithParam<Hostile>;

TEST_P(Document, EndsWithinBounds)
{
    const ScratchDirectory scratch;
    scratch.write("in.xml", documentOf(GetParam()));
    for (const std::string &stack : stacks) {
        std::string command = bounds;
        command.append("ulimit -s ").append(stack);
        command.append("; exec " XMLPP_COMMAND " in.xml out.xml m=1");
        const CommandResult run = runCommand({"/bin/sh", "-c", command}, scratch.path());
        if (stack == stacks.front() || !run.error.ends_with(" levels deep\n")) {
            EXPECT_EQ(run.error, GetParam().error) << stack;
        }
        EXPECT_EQ(run.status, run.error.empty() ? 0 : 1) << stack;
    }
}

const char tooDeep[] = "XmlPP::processConditionals(): nested more than 5000 levels deep\n";
const char manyCopies[] = "<for index='i' start='0' end='200000' incr='1'><a/></for>";
const char manyMacros[] =
    "<r><for index='i' start='0' end='50000' incr='1'><define name='b$(i)' value='1'/></for>";

const Hostile documents[] = {
    {"Deep", "<r>", "<if m='1'>", "<a/>", "</if>", "</r>", "", 4998},
    {"TooDeep", "<r>", "<if m='1'>", "<a/>", "</if>", "</r>", tooDeep},
    {"Attributes", "<a", " a@=''", "", "", "/>"},
    {"References", "<a v='", "$(m)&lt;&#$(", "", "", "'/>"},
    {"Defaults", "<a v='", "$(u:", "", ")", "'/>"},
    {"Parentheses", "<r><ifex expression='", "(", "1", ")", "'/></r>"},
    {"Signs", "<r><ifex expression='", "-", "1==-1", "", "'><a/></ifex></r>", "", 3900},
    {"Lists", "<r><foreach", " a@='1'", "><a v='$(a1)'/></foreach", "", "></r>"},
    {"Macros", "<r><xmldef name='f'/><xmlput name='f' macros='", "a@=@;", "", "", "'/></r>"},
    {"Conditions", "<r>", "<ifndef name='a@'><if m='1'><a/></if></ifndef>", "", "", "</r>"},
    {"Fragments", "<r><xmldef name='f'/>", "<xmlput name='f' macros='a@=1'/>", "", "", "</r>"},
    {"Levels", manyMacros, "<a><define name='b1' value='2'/>", "", "</a>", "</r>", "", 4000},
    {"Splices", "<r>", "<if m='1'>", manyCopies, "</if>", "</r>", "", 4000},
};

INSTANTIATE_TEST_SUITE_P(Hostile, Document, testing::ValuesIn(documents));

}  // namespace

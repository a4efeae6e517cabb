// Documents that ask for too much. Each ends soon, in little memory, in a result or an error.

#include "command.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace
{

#ifdef XMLPP_TIMED
constexpr bool isTimed = true;
constexpr int Million = 1'000'000;
#else
// What slows the program down is built in, so less is asked for and nothing is timed.
constexpr bool isTimed = false;
constexpr int Million = 50'000;
#endif

/// A text and how often it stands there, each '@' in it replaced by the number of the repetition
/// and each '^' by the next one. 0 times: what follows is the file of that name.
struct Piece {
    const char *text;
    int times = 1;
};

struct Hostile {
    const char *name;
    std::vector<Piece> pieces;
    const char *error;   ///< a part of the error, "" for a success
    bool grows = false;  ///< meets the bound on the document's growth
};

void PrintTo(const Hostile &hostile, std::ostream *stream)
{
    *stream << hostile.name;
}

void writeFiles(const ScratchDirectory &scratch, const std::vector<Piece> &pieces)
{
    FILE *file = std::fopen(scratch.file("in.xml").c_str(), "wb");
    for (const Piece &piece : pieces) {
        if (piece.times == 0)
            file = std::freopen(scratch.file(piece.text).c_str(), "wb", file);
        for (int number = 0; number < piece.times; ++number) {
            for (const char *c = piece.text; *c; ++c) {
                if (*c == '@' || *c == '^')
                    std::fprintf(file, "%d", number + (*c == '^'));
                else
                    std::putc(*c, file);
            }
        }
    }
    std::fclose(file);
}

CommandResult measure(const std::vector<Piece> &pieces)
{
    const ScratchDirectory scratch;
    writeFiles(scratch, pieces);
    return runCommand({XMLPP_COMMAND, "in.xml", "out.xml", "m=1;g=xxxxxxxx"}, scratch.path());
}

using Document = testing::TestWithParam<Hostile>;

TEST_P(Document, EndsSoonAndInLittleMemory)
{
    const Hostile &hostile = GetParam();
    const CommandResult run = measure(hostile.pieces);
    std::printf("%-55s %6.2f s %6.0f MiB  %s\n", hostile.name, run.seconds, run.mebibytes,
                run.error.empty() ? "ok\n" : run.error.c_str());
    EXPECT_EQ(run.status, *hostile.error ? 1 : 0);
    EXPECT_NE(run.error.find(hostile.error), std::string::npos);
    if (isTimed) {
        EXPECT_LT(run.seconds, hostile.grows ? 5 : 2);
        EXPECT_LT(run.mebibytes, hostile.grows ? 2048 : 1024);
    }
}

const Hostile documents[] = {
    {"levels of elements", {{"<a>", Million}, {"</a>", Million}}, "nested more than 5000 levels"},
    {"elements that are not closed", {{"<a>", Million}}, ""},
    {"end tags too many", {{"<a/>"}, {"</a>", Million}}, ""},
    {"a file that includes itself",
     {{"<r><include filename=\"in.xml\"/></r>"}},
     "more than 200 nested includes"},
    {"a ring of three files",
     {{"<r><include filename=\"b\"/></r>"},
      {"b", 0},
      {"<r><include filename=\"c\"/></r>"},
      {"c", 0},
      {"<r><include filename=\"in.xml\"/></r>"}},
     "more than 200 nested includes"},
    {"a fragment that puts itself",
     {{"<r><xmldef name=\"f\"><xmlput name=\"f\" macros=\"a=1\"/></xmldef><xmlput "
       "name=\"f\"/></r>"}},
     "nested more than 5000 levels"},
    {"fragments that double thirty times",
     {{"<r>"},
      {"<xmldef name=\"f@\"><xmlput name=\"f^\"/><xmlput name=\"f^\"/></xmldef>", 30},
      {"<xmldef name=\"f30\"><a/></xmldef><xmlput name=\"f0\"/></r>"}},
     "directives bring more than 1073741824 bytes",
     true},
    {"many macros and many levels that define one",
     {{"<r>"},
      {"<define name=\"a@\" value=\"b\"/>", 100000},
      {"<x><define name=\"a1\" value=\"b\"/>", 4000},
      {"</x>", 4000},
      {"</r>"}},
     ""},
    {"parentheses", {{"<r><ifex expression=\""}, {"(", Million}, {"\"/></r>"}}, ""},
    {"a chain of operators", {{"<r><ifex expression=\"1"}, {"+1", Million}, {"\"/></r>"}}, ""},
    {"a chain of steps", {{"<r><ifex expression=\"1"}, {"++", Million}, {"\"/></r>"}}, ""},
    {"a product of lists",
     {{"<r><foreach"}, {" a@=\"0,1,2,3,4,5,6,7,8,9\"", 8}, {"><a/></foreach></r>"}},
     "more than 10000000 rounds in <foreach>"},
    {"a loop without end",
     {{"<r><for index=\"i\" start=\"0\" end=\"4294967295\" incr=\"1\"><a/></for></r>"}},
     "more than 10000000 rounds in <for>"},
    {"a long loop",
     {{"<r><for index=\"i\" start=\"0\" end=\"10000000\" incr=\"1\"><a "
       "v=\"$(i)\"/><a/></for></r>"}},
     "directives bring more than 1073741824 bytes",
     true},
    {"loops in loops",
     {{"<r>"},
      {"<for index=\"i@\" start=\"0\" end=\"10000\" incr=\"1\">", 3},
      {"<a/>"},
      {"</for>", 3},
      {"</r>"}},
     "directives bring more than 1073741824 bytes",
     true},
    {"a macro that doubles",
     {{"<r>"}, {"<define name=\"g\" value=\"$(g)$(g)\"/>", 60}, {"</r>"}},
     "out of memory"},
    {"a macro that doubles when it is rescanned",
     {{"<r><define name=\"h$\" value=\"$$(h$)$$(h$)\"/><a v=\"$$(h$)\"/></r>"}},
     "out of memory"},
    {"a value of 100 MB", {{"<a v=\""}, {"0123456789", 10 * Million}, {"\"/>"}}, ""},
    {"names of 10 MB",
     {{"<a"}, {"0123456789", Million}, {" v"}, {"0123456789", Million}, {"=\"\"/>"}},
     ""},
    {"references that are not closed", {{"<a v=\""}, {"$(", 25 * Million}, {"\"/>"}}, ""},
    {"defaults in defaults", {{"<a v=\""}, {"$(u:", 100000}, {")", 100000}, {"\"/>"}}, ""},
    {"half a numeric reference", {{"<a v=\""}, {"&#", 25 * Million}, {"\"/>"}}, ""},
    {"half a declaration", {{"<a>"}, {"<!", 25 * Million}, {"</a>"}}, ""},
    {"a list of macros",
     {{"<r><xmldef name=\"f\"><a v=\"$(a1)\"/></xmldef><xmlput name=\"f\" macros=\""},
      {"a@=@;", Million},
      {"\"/></r>"}},
     ""},
    {"conditions beside each other",
     {{"<r>"}, {"<ifndef name=\"a@\"><if m=\"1\"><a/></if></ifndef>", 150000}, {"</r>"}},
     ""},
    {"many children under many conditions",
     {{"<r>"}, {"<if m=\"1\">", 4000}, {"<a/>", Million}, {"</if>", 4000}, {"</r>"}},
     ""},
};

INSTANTIATE_TEST_SUITE_P(Hostile, Document, testing::ValuesIn(documents));

/// Documents of any length: what is repeated, between a beginning and an end.
struct Growing {
    const char *beginning;
    const char *repeated;
    const char *end;
    int times;
};

TEST(Time, GrowsInProportion)
{
    for (const Growing &growing : {
             Growing{"<r><a", " a@=\"\"", "/></r>", 25000},
             Growing{"<r><foreach", " a@=\"1\"", "><a v=\"$(a1)\"/></foreach></r>", 25000},
             Growing{"<r><a v=\"", "$(m)&lt;$(", "\"/></r>", 200000},
             Growing{"<r><ifex expression=\"1", "+1", "\"/></r>", 100000},
             Growing{"<r><ifnot m=\"2\">", "<a/>", "</ifnot></r>", 300000},
             Growing{"<r>", "<if m=\"1\"><a/><b/></if>", "</r>", 100000},
             Growing{"<r>", "<a><define name=\"a@\" value=\"1\"/></a>", "</r>", 50000},
             Growing{"<r><xmldef name=\"f\"><a/></xmldef>", "<xmlput name=\"f\" macros=\"a@=1\"/>",
                     "</r>", 50000},
         }) {
        const auto seconds = [&](int times) {
            return std::max(
                measure({{growing.beginning}, {growing.repeated, times}, {growing.end}}).seconds,
                0.02);
        };
        const double few = seconds(growing.times);
        const double many = seconds(4 * growing.times);
        std::printf("%-55s %6.2f s, four times as long %6.2f s\n", growing.repeated, few, many);
        EXPECT_TRUE(!isTimed || many < 10 * few) << growing.repeated;
    }
}

}  // namespace

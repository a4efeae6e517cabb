// When a document is done a piece at a time. That the result is the same is tested by the cases, each
// of which runs with small windows too.

#include "command.h"
#include "windows.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace
{

using windows::Outcome;

/// A ' stands for a ", a * for elements that do not fit into one window.
struct Row {
    const char *document;
    Outcome outcome;
    const char *output = "out.xml";
};

const Row rows[] = {
    {"<r>*</r>", Outcome::Written},
    {"<?xml version='1'?><!DOCTYPE r><!-- --> <r>*</r>*<!-- -->", Outcome::NeedsTree},
    {"<?xml version='1'?><!DOCTYPE r><!-- --> <r>*</r> <!-- -->", Outcome::Written},
    {"<r a='fits into the look-ahead, but into no window'>*</r>", Outcome::Written},
    {"<r a='**'>*</r>", Outcome::NeedsTree},
    {"<r>*<if m=''>*</if>*</r>", Outcome::Written},
    {"<r><!-- *-->*</r>", Outcome::NeedsTree},
    {"", Outcome::NeedsTree},
    {"text<r>*</r>", Outcome::NeedsTree},
    {"<r>*", Outcome::NeedsTree},
    {"<if m=''>*<r/></if>", Outcome::NeedsTree},
    {"<r>*</s>", Outcome::NeedsTree},
    {"<r>*<?xml version='1'?></r>", Outcome::NeedsTree},
    {"<?xml version='1'?><r>*<?xml version='1'?></r>", Outcome::Written},
    {"<?xml version='1'?><r>*<include filename='1.xml'/></r>", Outcome::Written},
    {"<?xml version='2'?><r>*<include filename='1.xml'/></r>", Outcome::NeedsTree},
    {"<r>*<include filename='pipe'/></r>", Outcome::NeedsTree},
    {"<r>*<xmlput name='none'/></r>", Outcome::NeedsTree},
    {"<r><a><a>*<a/></a></a></r>", Outcome::Written},
    {"<r><a><a><a><a><a>*</a></a></a></a></a></r>", Outcome::NeedsTree},
    {"<r>*</r>", Outcome::NeedsTree, "pipe"},
    {"<r>*</r>", Outcome::NeedsTree, "none/out.xml"},
    // A bound is no reason, but what is behind it can be one.
    {"<r><for index='i' start='0' end='100' incr='1'><a/></for>*</r>", Outcome::Refused},
    {"<r><for index='i' start='0' end='100' incr='1'><a/></for>*</s>", Outcome::NeedsTree},
};

TEST(Windows, LeaveToTheTreeWhatIsNotKnownInTime)
{
    for (const auto &[document, outcome, output] : rows) {
        const ScratchDirectory scratch;
        std::string text = document;
        std::ranges::replace(text, '\'', '"');
        std::string elements;
        for (int i = 0; i < 23; ++i)
            elements += "<b/>";
        for (std::size_t at = 0; (at = text.find('*', at)) != std::string::npos;)
            text.replace(at, 1, elements);
        scratch.write("in.xml", text);
        scratch.write("1.xml", "<?xml version=\"1\"?><a/>");
        mkfifo(scratch.file("pipe").c_str(), 0600);
        const std::string in = scratch.file("in.xml");
        const std::string out = scratch.file(output);
        std::unique_ptr<OutputFile> file;
        std::string message;
        EXPECT_EQ(windows::preprocess({.inFile = in.c_str(),
                                       .outFile = out.c_str(),
                                       .macroList = "m=",
                                       .doctype = nullptr,
                                       .limits = {.nestedLevels = 5, .growth = 4000},
                                       .sizes = {.text = 32, .lookAhead = 64}},
                                      &file, &message),
                  outcome)
            << document;
        EXPECT_EQ(message.empty(), outcome != Outcome::Refused) << message;
        EXPECT_EQ(file && file->commit(), outcome == Outcome::Written);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(scratch.path()), {}),
                  3 + (outcome == Outcome::Written))
            << document;
    }
}

}  // namespace

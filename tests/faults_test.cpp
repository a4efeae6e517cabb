// What the built command does when the system fails it.

#include "command.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using Fault = testing::TestWithParam<const char *>;

TEST_P(Fault, EndsInTheRightOutputOrInOneLineAndNoTrace)
{
    const ScratchDirectory scratch;
    const ScratchDirectory marks;
    const std::string mark = marks.file("mark");
    const std::string out = scratch.file("out.xml");
    scratch.write("in.xml", R"xml(<?xml version="1.0"?><!DOCTYPE r><r>
<if m="1"><a v="$(m)$(u:$(m))"/></if><define name="e" expression="(1 + 2) * 0x10"/>
<include filename="d/b.xml" macros="a=1;b=2" inherit_attributes="x" x="y"/>
<xmldef name="f"><c v="$(e)"/></xmldef><xmlput name="f" macros="e=0"/>
<for index="i" start="0" end="2" incr="1"><xmlput name="f"/><d v="$(i_alpha)"/></for>
<foreach p="1,2" q="3"><ifex expression="$(p) == $(q) - 1"><e/></ifex></foreach>
<switch name="m"><case value="1"><g/></case></switch><![CDATA[text]]>)xml" +
                                std::string(20'000, ' ') + "</r>");
    scratch.write("d/b.xml", "<b v=\"$(a)$(b)\"><h v=\"$(m)\"/></b>");
    runCommand({XMLPP_COMMAND, "in.xml", "out.xml", "m=1"}, scratch.path());
    const std::string right = readFile(out);
    int failed = 0;
    for (int number = 1; number < 5000 && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        scratch.write("out.xml", "old");
        std::filesystem::permissions(out, std::filesystem::perms(0640));
        std::filesystem::remove(mark);
        const CommandResult result = runCommand(
            {"/usr/bin/env", std::string("LD_PRELOAD=") + XMLPP_FAULTS, "FAULT_MARK=" + mark,
             std::string("FAULT=") + GetParam() + ':' + std::to_string(number), XMLPP_COMMAND,
             "in.xml", "out.xml", "m=1"},
            scratch.path());
        EXPECT_EQ(result.status, result.error.empty() ? 0 : 1) << result.error;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), result.status);
        EXPECT_EQ(readFile(out), result.status == 0 ? right : "old");
        EXPECT_EQ(std::filesystem::status(out).permissions(), std::filesystem::perms(0640));
        const std::filesystem::directory_iterator files(scratch.path());
        EXPECT_EQ(std::distance(begin(files), end(files)), 3) << "a file is left";
        failed += result.status;
        if (!std::filesystem::exists(mark)) {
            EXPECT_EQ(result.status, 0);
            break;
        }
    }
    std::printf("%d failures\n", failed);
    EXPECT_TRUE(failed > 5 || GetParam() == std::string("short"));
}

INSTANTIATE_TEST_SUITE_P(Injected, Fault,
                         testing::Values("memory", "memory+", "io", "io+", "short"));

}  // namespace

// What the built command does when the system fails it, and that nothing else sways it.

#include "command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

namespace
{

void writeDocuments(const ScratchDirectory &scratch)
{
    scratch.write("in.xml", R"xml(<?xml version="1.0"?><!DOCTYPE r><r>
<if m="1"><a v="$(m)$(u:$(m))"/></if><define name="e" expression="(1 + 2) * 0x10"/>
<include filename="d/b.xml" macros="a=1;b=2" inherit_attributes="x" x="y"/>
<xmldef name="f"><c v="$(e)"/></xmldef><xmlput name="f" macros="e=0"/>
<for index="i" start="0" end="2" incr="1"><xmlput name="f"/><d v="$(i_alpha)"/></for>
<foreach p="1,2" q="3"><ifex expression="$(p) == $(q) - 1"><e/></ifex></foreach>
<switch name="m"><case value="1"><g/></case></switch><![CDATA[text]]>)xml" +
                                std::string(20'000, ' ') + "</r>");
    scratch.write("d/b.xml", "<b v=\"$(a)$(b)\"><h v=\"$(m)\"/></b>");
}

class Fault : public testing::TestWithParam<const char *>
{
};

TEST_P(Fault, EndsInTheRightOutputOrInOneLineAndNoTrace)
{
    const ScratchDirectory scratch;
    const ScratchDirectory marks;
    const std::string mark = marks.file("mark");
    const std::string out = scratch.file("out.xml");
    writeDocuments(scratch);
    runCommand({XMLPP_COMMAND, "in.xml", "out.xml", "m=1"}, scratch.path());
    const std::string right = readFile(out);
    ASSERT_GT(right.size(), 100U);
    int failed = 0;
    for (int number = 1; number < 5000 && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        scratch.write("out.xml", "old");
        ASSERT_EQ(chmod(out.c_str(), 0640), 0);
        std::filesystem::remove(mark);
        const CommandResult result = runCommand(
            {"/usr/bin/env", std::string("LD_PRELOAD=") + XMLPP_FAULTS, "FAULT_MARK=" + mark,
             "FAULT=" + std::string(GetParam()) + ':' + std::to_string(number), XMLPP_COMMAND,
             "in.xml", "out.xml", "m=1"},
            scratch.path());
        EXPECT_EQ(result.status, result.error.empty() ? 0 : 1) << result.error;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), result.status);
        EXPECT_EQ(readFile(out), result.status == 0 ? right : "old");
        struct stat status = {};
        EXPECT_EQ(stat(out.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, 0640U);
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

/// A case in shell: \a script runs the program, $X, over in.xml and prints what it has seen.
struct Scripted {
    const char *script;
    const char *printed;
};

TEST(Fault, OfTheSystemIsReportedOnce)
{
    for (const Scripted &scripted : {
             // A file size limit below what is to be written, byte by byte.
             Scripted{"echo old >out.xml; for n in $(seq 0 22); do prlimit --fsize=$n $X in.xml "
                      "out.xml 2>&1 | cat; done | uniq -c | sed 's/^ *//'; cat out.xml; ls -A",
                      "22 save error couldn't write out.xml\n<a>\n  <b x=\"1\"/>\n</a>\nin.xml\n"
                      "out.xml\n"},
             // A pipe that nobody reads any more.
             Scripted{"trap '' PIPE; { while echo; do :; done 2>err; $X in.xml /dev/stdout 2>err; "
                      "echo $? >status; } | :; cat status err",
                      "1\nsave error couldn't write /dev/stdout\n"},
             // A file that goes between two includes: when the first one, a pipe, is read.
             Scripted{
                 "mkfifo f; echo '<g/>' >g; echo '<r><include filename=\"f\"/><include "
                 "filename=\"g\"/></r>' >in.xml; { rm g; echo '<f/>'; } >f & $X in.xml out.xml "
                 "2>&1; echo $?; ls",
                 "XmlPP::processConditionals(): error \"couldn't read ./g\" in include file "
                 "./g line:0\n1\nf\nin.xml\n"},
             Scripted{"echo '<r><include filename=\".\"/></r>' >in.xml; $X in.xml out.xml 2>&1",
                      "XmlPP::processConditionals(): error \"couldn't read ./.\" in include file "
                      "./. line:0\n"},
             Scripted{"for text in '' '\\357\\273\\277<a/>' '\\0<a/>'; do printf $text >in.xml; $X "
                      "in.xml out.xml; echo $?; wc -c <out.xml; done; printf '<a/>\\0<b>' >in.xml; "
                      "$X in.xml out.xml; cat out.xml",
                      "0\n0\n0\n0\n0\n0\n<a/>\n"},
         }) {
        const ScratchDirectory scratch;
        scratch.write("in.xml", "<a><b x=\"1\"/></a>");
        const std::string script = std::string("X='") + XMLPP_COMMAND + "'\n" + scripted.script;
        EXPECT_EQ(runCommand({"/bin/sh", "-c", script}, scratch.path()).output, scripted.printed);
    }
}

TEST(Command, WritesTheSameBytesWhateverSurroundsIt)
{
    const ScratchDirectory scratch;
    writeDocuments(scratch);
    const std::string out = scratch.file("out.xml");
    const auto run = [&](std::vector<std::string> prefix, const std::string &directory) {
        std::filesystem::remove(out);
        prefix.insert(prefix.end(), {XMLPP_COMMAND, scratch.file("in.xml"), out, "m=\xE9"});
        EXPECT_EQ(runCommand(prefix, directory).status, 0);
        return readFile(out);
    };
    const std::string usual = run({"/usr/bin/env"}, "/");
    ASSERT_GT(usual.size(), 100U);
    for (const std::vector<std::string> &prefix : std::vector<std::vector<std::string>>{
             {"/usr/bin/env", "-i"},
             {"/usr/bin/env", "LC_ALL=C.UTF-8", "TZ=Asia/Tokyo", "QT_LOGGING_RULES=*=true"},
             {"/usr/bin/env", "LC_ALL=tr_TR.ISO-8859-9", "LANGUAGE=tr", "MALLOC_PERTURB_=165"},
             {"/usr/bin/setarch", "-R"}})
        EXPECT_EQ(run(prefix, scratch.path()), usual) << prefix.back();
}

}  // namespace

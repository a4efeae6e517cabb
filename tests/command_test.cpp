// The built command on whole documents: every case of tests/cases and every example, and that
// the manual shows what the examples hold.

#include "command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

namespace
{

/// A case of a .case file is a line "=== name", the document in.xml, then what these lines begin.
///
///     --- args         one argument a line, behind "in.xml out.xml"
///     --- file NAME    another file that is there
///     --- out TEXT     what out.xml must be when each line end goes, the indentation behind it
///                      too; it must not be there without this line
///     --- error TEXT   what standard error must be, with status 1; empty otherwise
void expectCase(const std::string &text)
{
    const ScratchDirectory scratch;
    std::vector<std::string> arguments{XMLPP_COMMAND, "in.xml", "out.xml"};
    std::map<std::string, std::string> files;
    std::string section = "file in.xml";
    std::string output = "(no file)";
    std::string error;
    std::istringstream lines(text.substr(text.find('\n') + 1));
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("--- out "))
            output = line.substr(8);
        else if (line.starts_with("--- error "))
            error = line.substr(10) + '\n';
        else if (line.starts_with("--- "))
            section = line.substr(4);
        else if (section == "args")
            arguments.push_back(line);
        else
            scratch.write(section.substr(5), files[section] += line + '\n');
    }
    const CommandResult result = runCommand(arguments, scratch.path());
    EXPECT_EQ(result.error, error);
    std::string written = readFile(scratch.file("out.xml"));
    for (std::size_t at = 0; (at = written.find('\n', at)) != std::string::npos;)
        written.erase(at, written.find_first_not_of(' ', at + 1) - at);
    EXPECT_EQ(written, output);
    EXPECT_EQ(result.status, error.empty() ? 0 : 1);
    EXPECT_EQ(result.output, "");
}

TEST(Cases, GiveWhatTheyShow)
{
    for (const auto &entry : std::filesystem::directory_iterator(XMLPP_CASES)) {
        const std::string text = "\n" + readFile(entry.path());
        for (std::size_t start = 0, end = 0; end != std::string::npos; start = end) {
            end = text.find("\n=== ", start + 1);
            const std::string each = text.substr(start + 1, end - start);
            SCOPED_TRACE(each);
            expectCase(each);
        }
    }
}

/// The first line of an example shows its command; the arguments stand in quotes.
TEST(Examples, GiveWhatTheyShow)
{
    const std::filesystem::path examples = XMLPP_EXAMPLES;
    const ScratchDirectory scratch;
    for (const auto &entry : std::filesystem::directory_iterator(examples)) {
        if (entry.path().extension() != ".xml")
            continue;
        const std::string name = entry.path().filename();
        const std::string document = readFile(entry.path());
        std::vector<std::string> command{XMLPP_COMMAND, "examples/" + name, scratch.file(name)};
        std::istringstream shown(document.substr(0, document.find('\n')));
        for (std::string text; std::getline(shown.ignore(1000, '\''), text, '\'');)
            command.push_back(text);
        EXPECT_EQ(runCommand(command, examples.parent_path()).error, "") << name;
        EXPECT_EQ(readFile(scratch.file(name)), readFile(examples / "expected" / name)) << name;
    }
}

/// Whether \a text has the lines of \a shown, in that order and however they are indented.
bool holds(const std::string &text, const std::string &shown)
{
    std::size_t at = 0;
    std::istringstream lines(shown);
    for (std::string line; at != std::string::npos && std::getline(lines >> std::ws, line);)
        at = text.find(line + '\n', at);
    return at != std::string::npos;
}

TEST(Examples, HoldWhatTheManualShows)
{
    const std::filesystem::path examples = XMLPP_EXAMPLES;
    std::vector<std::string> held;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(examples))
        held.push_back(entry.is_directory() ? "" : readFile(entry.path()));
    std::string manual = readFile(examples / "../README.md");
    manual += readFile(examples / "../docs/directives.md");
    int blocks = 0;
    for (std::size_t at = 0; (at = manual.find("```xml\n", at)) != std::string::npos; ++blocks) {
        const std::string shown = manual.substr(at + 7, manual.find("```\n", at + 7) - at - 7);
        EXPECT_TRUE(std::ranges::any_of(held, [&](auto &text) { return holds(text, shown); }))
            << shown;
        at += 7 + shown.size();
    }
    EXPECT_GT(blocks, 10);
}

/// Shell scripts, each in a directory of its own with the program as $X, the examples as $E, half
/// of a stack in KiB as $S and a document in.xml, and what they print.
TEST(Command, ReadsAndWrites)
{
#ifdef __SANITIZE_ADDRESS__
    std::string settings = "S=65536\n";
#else
    std::string settings = "S=4096\n";
#endif
    settings += "X='" XMLPP_COMMAND "' E='" XMLPP_EXAMPLES "'\n";
    const std::string small = "<a>\n  <b x=\"1\"/>\n</a>\n";
    const std::pair<std::string, std::string> scripts[] = {
        {"$X in.xml 2>out.xml; echo $?; sed \"s|^$X|X|\" out.xml",
         "1\nX: <infile> <outfile> [macro1=value;macro2=value;..]\n"},
        {"$X in.xml out.xml v=1 new more; cat out.xml", small},
        {"cat in.xml | $X /dev/stdin out.xml v=1 && cat out.xml", small},
        {"(printf '<a><b v=\"1'; head -c 200000 /dev/zero | tr '\\0' x; printf '&lt;$(v)\"/>'; "
         "printf '<c v=\"$(v)\"/></a>') | $X /dev/stdin out.xml v=1; tail -c 32 out.xml",
         "xxxxx&lt;1\"/>\n  <c v=\"1\"/>\n</a>\n"},
        {"(echo first; $X in.xml /dev/stdout; echo last) >o; cat o; $X in.xml /dev/stdout | cat",
         "first\n" + small + "last\n" + small},
        {"printf '\\n\\n<a></b>' >in.xml; $X in.xml out.xml 2>&1; echo $?; ls -A",
         "load error tagName mismatch at 1\n1\nin.xml\n"},
        {"for f in . no/out.xml /dev/full; do $X in.xml $f 2>&1 || echo $?; done",
         "save error couldn't write .\n1\nsave error couldn't write no/out.xml\n1\n"
         "save error couldn't write /dev/full\n1\n"},
        {"umask 027; $X in.xml out.xml; chmod 604 in.xml; $X in.xml in.xml; stat -c %a *; "
         "cat in.xml",
         "604\n640\n" + small},
        {"mkdir d; ln -s d/real.xml out.xml; $X in.xml out.xml; ls -A d; echo x >d/real.xml; "
         "$X in.xml out.xml; readlink out.xml; cat d/real.xml",
         "real.xml\nd/real.xml\n" + small},
        {"$X none.xml out.xml 2>&-; echo $?; $X in.xml out.xml <&- >&- 2>&-; echo $?; cat out.xml",
         "1\n0\n" + small},
        {"n=$(printf '\\351').xml; echo \"<r><include filename='$n'/></r>\" | tr \\' '\"' >in.xml; "
         "echo '<l1/>' >$n; $X in.xml out.xml; cat out.xml",
         "<r>\n  <l1/>\n</r>\n"},
        // A file size limit below what is to be written, byte by byte.
        {"echo old >out.xml; for n in $(seq 0 22); do prlimit --fsize=$n $X in.xml out.xml 2>&1 | "
         "cat; done | uniq -c | sed 's/^ *//'; cat out.xml; ls -A",
         "22 save error couldn't write out.xml\n" + small + "in.xml\nout.xml\n"},
        // A pipe that nobody reads any more.
        {"{ (trap '' PIPE; while echo; do :; done 2>err); $X in.xml /dev/stdout 2>err; echo $? "
         ">status; } | :; cat status err",
         "1\nsave error couldn't write /dev/stdout\n"},
        // A file that goes between two includes: when the first one, a pipe, is read.
        {"mkfifo f; echo '<g/>' >g; echo '<r><include filename=\"f\"/><include filename=\"g\"/>"
         "</r>' >in.xml; { rm g; echo '<f/>'; } >f & $X in.xml out.xml 2>&1; echo $?; ls",
         "XmlPP::processConditionals(): error \"couldn't read ./g\" in include file ./g "
         "line:0\n1\nf\nin.xml\n"},
        {"echo '<r><include filename=\".\"/></r>' >in.xml; $X in.xml out.xml 2>&1",
         "XmlPP::processConditionals(): error \"couldn't read ./.\" in include file ./. line:0\n"},
        {"for text in '' '\\357\\273\\277<a/>' '\\0<a/>'; do printf $text >in.xml; $X in.xml out; "
         "wc -c <out; done; printf '<a/>\\0<b>' >in.xml; $X in.xml out; cat out",
         "0\n0\n0\n<a/>\n"},
        // Nothing but the arguments and the files sways the output.
        {"for e in -i 'LC_ALL=C.UTF-8 TZ=Asia/Tokyo QT_LOGGING_RULES=*=true' "
         "'LC_ALL=tr_TR.ISO-8859-9 LANGUAGE=tr MALLOC_PERTURB_=165' 'setarch -R'; do "
         "env $e $X $E/scope.xml out.xml; cmp out.xml $E/expected/scope.xml; "
         "env $e $X in.xml out.xml \"$(printf 'v=\\351')\"; grep -c '&#xe9;' out.xml; done",
         "1\n1\n1\n1\n"},
        // The deepest nesting, and a fragment that puts itself, take less than half of the stack.
        {"ulimit -s $S; (echo '<r>'; yes '<if m=\"1\">' | head -4998; echo '<a/>'; yes '</if>' | "
         "head -4998; echo '</r>') >in.xml; $X in.xml out.xml m=1; cat out.xml; echo '<r><xmldef "
         "name=\"f\"><xmlput name=\"f\" macros=\"a=1\"/></xmldef><xmlput name=\"f\"/></r>' >f.xml; "
         "$X f.xml out.xml 2>&1",
         "<r>\n  <a/>\n</r>\nXmlPP::processConditionals(): nested more than 5000 levels deep\n"},
        // A link to the executable counts where it lies, not where it leads to.
        {"mkdir -p kit/bin; ln -s $X kit/bin/tool; cd kit/bin; echo '<b/>' >../b.xml; echo "
         "'<a><include filename=\"$(StudioDir)/b.xml\"/></a>' >in.xml; $PWD/tool in.xml 1; "
         "./tool in.xml 2; cd ..; bin/tool bin/in.xml 3; cat bin/1 bin/2 3 | grep -c '^  <b/>$'",
         "3\n"},
    };
    for (const auto &[script, printed] : scripts) {
        const ScratchDirectory scratch;
        scratch.write("in.xml", "<a><b x=\"$(v:1)\"/></a>");
        EXPECT_EQ(runCommand({"/bin/sh", "-c", settings + script}, scratch.path()).output, printed)
            << script;
    }
}

}  // namespace

// The built command on whole documents: every case of tests/cases and every example.

#include "command.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>

namespace
{

/// One case of a .case file: "=== name", then sections that a line "--- title" begins.
///
///     --- args         one argument a line, behind "in.xml out.xml"
///     --- file NAME    a file that is there; in.xml is one of them
///     --- out          what out.xml must be; it must not be there without this section
///     --- error        what standard error must be, with status 1; empty otherwise
struct Case {
    std::string name;
    std::map<std::string, std::string> sections;
};

void PrintTo(const Case &testCase, std::ostream *stream)
{
    *stream << testCase.name;
}

std::vector<Case> readCases()
{
    std::vector<Case> cases;
    for (const auto &entry : std::filesystem::directory_iterator(XMLPP_CASES)) {
        std::istringstream lines(readFile(entry.path()));
        std::string *section = nullptr;
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("=== ")) {
                cases.push_back({entry.path().stem().string() + ": " + line.substr(4), {}});
                section = nullptr;
            } else if (line.starts_with("--- ")) {
                section = &cases.back().sections[line.substr(4)];
            } else if (section) {
                *section += line + '\n';
            }
        }
    }
    return cases;
}

class DocumentCase : public testing::TestWithParam<Case>
{
};

TEST_P(DocumentCase, GivesTheExpectedBytes)
{
    const ScratchDirectory scratch;
    std::vector<std::string> arguments{XMLPP_COMMAND, "in.xml", "out.xml"};
    std::string output = "(no file)";
    std::string error;
    for (const auto &[title, text] : GetParam().sections) {
        std::istringstream lines(text);
        if (title == "args") {
            for (std::string line; std::getline(lines, line);)
                arguments.push_back(line);
        } else if (title.starts_with("file "))
            scratch.write(title.substr(5), text);
        else
            (title == "out" ? output : error) = text;
    }
    const CommandResult result = runCommand(arguments, scratch.path());
    EXPECT_EQ(result.error, error);
    EXPECT_EQ(readFile(scratch.file("out.xml")), output);
    EXPECT_EQ(result.status, error.empty() ? 0 : 1);
    EXPECT_EQ(result.output, "");
}

INSTANTIATE_TEST_SUITE_P(All, DocumentCase, testing::ValuesIn(readCases()),
                         [](const auto &parameter) {
                             std::string name = parameter.param.name;
                             for (char &c : name)
                                 c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                             return name;
                         });

/// The arguments in quotes of the command that an example's first line shows.
std::vector<std::string> shownArguments(const std::string &document)
{
    std::istringstream line(document.substr(0, document.find('\n')));
    std::vector<std::string> arguments;
    std::string text;
    for (bool isQuoted = false; std::getline(line, text, '\''); isQuoted = !isQuoted) {
        if (isQuoted)
            arguments.push_back(text);
    }
    return arguments;
}

TEST(Examples, GiveWhatTheyShow)
{
    const std::filesystem::path examples = XMLPP_EXAMPLES;
    const ScratchDirectory scratch;
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(examples)) {
        if (entry.path().extension() != ".xml")
            continue;
        const std::string name = entry.path().filename();
        SCOPED_TRACE(name);
        std::vector<std::string> command{XMLPP_COMMAND, "examples/" + name, scratch.file(name)};
        for (const std::string &argument : shownArguments(readFile(entry.path())))
            command.push_back(argument);
        EXPECT_EQ(runCommand(command, examples.parent_path()).error, "");
        EXPECT_EQ(readFile(scratch.file(name)), readFile(examples / "expected" / name));
        ++count;
    }
    EXPECT_GT(count, 0);
}

TEST(Command, NamesItselfAsItWasCalled)
{
    const CommandResult result = runCommand({XMLPP_COMMAND, "in.xml"}, "/");
    EXPECT_EQ(result.error,
              std::string(XMLPP_COMMAND) + ": <infile> <outfile> [macro1=value;macro2=value;..]\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
}

TEST(Command, FindsIncludesBesideItself)
{
    const ScratchDirectory scratch;
    const std::string command = scratch.file("kit/bin/tool");
    scratch.write("kit/bin/x", "");
    scratch.write("kit/in.xml", "<a><include filename=\"$(StudioDir)/b.xml\"/></a>");
    scratch.write("kit/b.xml", "<b/>");
    // A link to the executable counts where it lies, not where it leads to.
    std::filesystem::create_symlink(XMLPP_COMMAND, command);
    for (const auto &[program, directory] :
         {std::pair(command, scratch.path()),
          std::pair(std::string("bin/tool"), scratch.file("kit")),
          std::pair(std::string("./tool"), scratch.file("kit/bin"))}) {
        const CommandResult result =
            runCommand({program, scratch.file("kit/in.xml"), scratch.file("out.xml")}, directory);
        EXPECT_EQ(result.error, "");
        EXPECT_EQ(readFile(scratch.file("out.xml")), "<a>\n  <b/>\n</a>\n");
    }
}

/// A case in shell, run in a directory of its own with the program as $X: \a script prepares and
/// runs, and prints what it has seen.
struct Scripted {
    const char *script;
    const char *printed;
};

class Shell : public testing::TestWithParam<Scripted>
{
};

TEST_P(Shell, PrintsWhatIsExpected)
{
    const ScratchDirectory scratch;
    scratch.write("in.xml", "<a><b x=\"$(v:1)\"/></a>");
    const std::string script = std::string("X='") + XMLPP_COMMAND + "'\n" + GetParam().script;
    EXPECT_EQ(runCommand({"/bin/sh", "-c", script}, scratch.path()).output, GetParam().printed);
}

INSTANTIATE_TEST_SUITE_P(
    InputAndOutput, Shell,
    testing::Values(
        Scripted{"$X in.xml in.xml && cat in.xml && ls -A", "<a>\n  <b x=\"1\"/>\n</a>\nin.xml\n"},
        Scripted{"cat in.xml | $X /dev/stdin out.xml v=2 && cat out.xml",
                 "<a>\n  <b x=\"2\"/>\n</a>\n"},
        Scripted{"$X in.xml /dev/stdout | cat", "<a>\n  <b x=\"1\"/>\n</a>\n"},
        Scripted{"(echo first; $X in.xml /dev/stdout; echo last) >log; cat log",
                 "first\n<a>\n  <b x=\"1\"/>\n</a>\nlast\n"},
        Scripted{"$X . out.xml 2>&1; echo $?; ls -A",
                 "load error couldn't read . at 0\n1\nin.xml\n"},
        Scripted{"$X in.xml . 2>&1; echo $?", "save error couldn't write .\n1\n"},
        Scripted{"$X in.xml no/out.xml 2>&1; echo $?", "save error couldn't write no/out.xml\n1\n"},
        Scripted{"$X in.xml /dev/full 2>&1; echo $?", "save error couldn't write /dev/full\n1\n"},
        Scripted{"echo old >out.xml; (ulimit -f 0; $X in.xml out.xml 2>&1; echo $?) | cat; cat "
                 "out.xml; ls -A",
                 "save error couldn't write out.xml\n1\nold\nin.xml\nout.xml\n"},
        Scripted{"echo old >out.xml; chmod 640 out.xml; $X in.xml out.xml && stat -c %a out.xml",
                 "640\n"},
        Scripted{"umask 027; $X in.xml out.xml && stat -c %a out.xml", "640\n"},
        Scripted{
            "mkdir d; ln -s d/real.xml out.xml; $X in.xml out.xml; ls -A d; echo x >d/real.xml; "
            "$X in.xml out.xml; readlink out.xml; wc -l <d/real.xml",
            "real.xml\nd/real.xml\n3\n"},
        Scripted{"$X none.xml out.xml 2>&- ; echo $?; $X in.xml out.xml <&- >&- 2>&-; echo $?; cat "
                 "out.xml",
                 "1\n0\n<a>\n  <b x=\"1\"/>\n</a>\n"},
        Scripted{
            "printf '\\351' >name; n=$(cat name).xml; printf '<r><include "
            "filename=\"%s\"/></r>' $n >in.xml; echo '<l1/>' >$n; $X in.xml out.xml; cat out.xml",
            "<r>\n  <l1/>\n</r>\n"}));

}  // namespace

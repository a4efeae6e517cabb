// The command on whole documents: each case of tests/cases (see the README there) and each example
// is a test of its own.

#include "command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

namespace
{

namespace fs = std::filesystem;

/// The parts of a case by what stands behind their "--- ".
using Case = std::map<std::string, std::string>;

/// A case that says nothing else.
const Case plainCase = {{"run", "xmlpp in.xml out.xml\n"}, {"prints", ""}, {"out", "(no file)"}};

class CaseTest : public testing::Test
{
public:
    explicit CaseTest(Case tested) : parts(std::move(tested)) {}

    void TestBody() override
    {
        const ScratchDirectory scratch;
        for (const auto &[name, content] : parts) {
            EXPECT_TRUE(name.starts_with("file ") || plainCase.contains(name)) << name;
            if (name.starts_with("file "))
                scratch.write(name.substr(5), content);
        }
        const std::string path = fs::path(XMLPP_COMMAND).parent_path();
        // Another build's program is tested with its directory in the environment: tools/cases.
        const std::string script = "PATH=${XMLPP_DIRECTORY:-'" + path +
                                   "'}:$PATH\n"
                                   "examples='" XMLPP_SOURCES "/examples'\nexec 2>&1\n" +
                                   parts.at("run");
        const CommandResult result = runCommand({"/bin/sh", "-c", script}, scratch.path());
        std::string prints = result.output;
        if (result.status != 0)
            prints += "exit status " + std::to_string(result.status) + '\n';
        EXPECT_EQ(prints, parts.at("prints")) << parts.at("run");
        EXPECT_EQ(readFile(scratch.file("out.xml")), parts.at("out")) << parts.at("run");
    }

private:
    const Case parts;
};

void addTest(const fs::path &file, std::string title, const Case &parts)
{
    // Punctuation means something to those who choose tests by their names.
    std::ranges::replace_if(
        title, [](unsigned char c) { return std::ispunct(c) && c != ','; }, '_');
    testing::RegisterTest(file.stem().c_str(), title.c_str(), nullptr, nullptr, file.c_str(), 1,
                          [parts] { return new CaseTest(parts); });
}

void addCases(const fs::path &file)
{
    std::istringstream lines(readFile(file) + "=== ");
    std::string title;
    std::string part;
    Case parts;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("=== ")) {
            if (!title.empty())
                addTest(file, title, parts);
            title = line.substr(4);
            part = "file in.xml";
            parts = plainCase;
        } else if (line.starts_with("--- ")) {
            part = line.substr(4);
            parts[part].clear();
        } else if (!line.empty()) {
            parts[part] += line + '\n';
        }
    }
}

/// The first line of an example shows its command.
void addExample(const fs::path &file)
{
    const std::string document = readFile(file);
    const std::size_t start = document.find("/run ") + 4;
    const std::string arguments = document.substr(start, document.find(" -->") - start);
    const fs::path directory = file.parent_path();
    Case parts = plainCase;
    parts["run"] = "cp -r '" + directory.string() + "' examples\nxmlpp" + arguments + '\n';
    parts["out"] = readFile(directory / "expected" / file.filename());
    addTest(directory, file.stem(), parts);
}

}  // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    for (const auto &entry : fs::directory_iterator(XMLPP_SOURCES "/tests/cases")) {
        if (entry.path().extension() == ".case")
            addCases(entry.path());
    }
    for (const auto &entry : fs::directory_iterator(XMLPP_SOURCES "/examples")) {
        if (entry.path().extension() == ".xml")
            addExample(entry.path());
    }
    return RUN_ALL_TESTS();
}

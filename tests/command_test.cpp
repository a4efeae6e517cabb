// The command on whole documents: each case of tests/cases (see the README there) and each example
// is a test of its own.

#include "caseparts.h"
#include "command.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

namespace fs = std::filesystem;

/// A case that says nothing else.
const Case plainCase = {{"run", "xmlpp in.xml out.xml\n"}, {"prints", ""}, {"out", "(no file)"}};

class CaseTest : public testing::Test
{
public:
    explicit CaseTest(Case tested) : parts(std::move(tested)) {}

    /// The result never tells how long the windows are. tools/cases names the directory of a program
    /// that has none.
    void TestBody() override
    {
        const char *const other = std::getenv("XMLPP_DIRECTORY");
        const std::string path = other ? other : fs::path(XMLPP_COMMAND).parent_path();
        run("PATH='" + path + "':$PATH");
        const std::string withWindows = " PATH='" + path + "/windows:" + path + "':$PATH";
        for (const char *window : {"32", "64", "100"}) {
            if (!other)
                run(std::string("export XMLPP_WINDOW=").append(window).append(withWindows));
        }
    }

private:
    void run(const std::string &settings) const
    {
        const ScratchDirectory scratch;
        for (const auto &[name, content] : parts) {
            EXPECT_TRUE(name.starts_with("file ") || plainCase.contains(name)) << name;
            if (name.starts_with("file "))
                scratch.write(name.substr(5), content);
        }
        const std::string script =
            settings + "\nexamples='" XMLPP_SOURCES "/examples'\n" + parts.at("run");
        auto [status, prints] = runCommand({"/bin/sh", "-c", script}, scratch.path());
        if (status != 0)
            prints += "exit status " + std::to_string(status) + '\n';
        EXPECT_EQ(prints, parts.at("prints")) << script;
        EXPECT_EQ(readFile(scratch.file("out.xml")), parts.at("out")) << script;
    }

    const Case parts;
};

void addTest(const fs::path &file, std::string title, Case parts)
{
    parts.insert(plainCase.begin(), plainCase.end());
    // Punctuation means something to those who choose tests by their names.
    std::ranges::replace_if(
        title, [](unsigned char c) { return std::ispunct(c) && c != ','; }, '_');
    testing::RegisterTest(file.stem().c_str(), title.c_str(), nullptr, nullptr, file.c_str(), 1,
                          [parts] { return new CaseTest(parts); });
}

void addCases(const fs::path &file)
{
    std::string text = readFile(file);
    while (!text.empty()) {
        const std::string title = text.substr(4, text.find('\n') - 4);
        const std::size_t end = std::min(text.find("\n=== "), text.size() - 1) + 1;
        addTest(file, title, partsOf(text.substr(title.size() + 4, end - title.size() - 4)));
        text.erase(0, end);
    }
}

/// The first line of an example shows its command.
void addExample(const fs::path &file)
{
    const std::string document = readFile(file);
    const std::size_t start = document.find("/run ") + 4;
    const std::string arguments = document.substr(start, document.find(" -->") - start);
    const fs::path directory = file.parent_path();
    addTest(directory, file.stem(),
            {{"run", "cp -r '" + directory.string() + "' examples\nxmlpp" + arguments + '\n'},
             {"out", readFile(directory / "expected" / file.filename())}});
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

// What the documents show is what the examples hold.

#include "command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace
{

std::vector<std::string> trimmedLines(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line.substr(std::min(line.find_first_not_of(' '), line.size())));
    return lines;
}

TEST(Documents, ShowLinesOfTheExamples)
{
    std::vector<std::vector<std::string>> examples;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(XMLPP_EXAMPLES)) {
        if (entry.is_regular_file())
            examples.push_back(trimmedLines(readFile(entry.path())));
    }
    const std::string document = readFile(XMLPP_EXAMPLES "/../README.md") +
                                 readFile(XMLPP_EXAMPLES "/../docs/directives.md");
    int blocks = 0;
    for (std::size_t at = 0; (at = document.find("```xml\n", at)) != std::string::npos; ++blocks) {
        const std::size_t end = document.find("\n```", at += 7);
        const std::vector<std::string> shown = trimmedLines(document.substr(at, end - at));
        EXPECT_TRUE(std::any_of(examples.begin(), examples.end(), [&](const auto &lines) {
            auto next = shown.begin();
            for (const std::string &line : lines)
                next += next != shown.end() && line == *next;
            return next == shown.end();
        })) << document.substr(at, end - at);
        at = end + 4;
    }
    EXPECT_GT(blocks, 10);
}

}  // namespace

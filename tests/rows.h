#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

/// Each line of a file in tests/rows has one text or more, two blanks apart, and behind " => " what
/// becomes of each: what \a outcomeOf(heading, text) returns. A line with "=== " begins a heading.
template <typename OutcomeOf>
void expectRows(const std::string &name, OutcomeOf outcomeOf)
{
    std::ifstream file(XMLPP_SOURCES "/tests/rows/" + name + ".txt");
    std::string heading;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("=== ")) {
            heading = line.substr(4);
            continue;
        }
        const std::size_t arrow = line.find(" => ");
        for (std::size_t start = 0; start < arrow;) {
            const std::size_t end = std::min(line.find("  ", start), arrow);
            const std::string text = line.substr(start, end - start);
            EXPECT_EQ(outcomeOf(heading, text), line.substr(arrow + 4)) << text;
            start = end + 2;
        }
    }
    EXPECT_FALSE(heading.empty()) << "nothing in " << name;
}

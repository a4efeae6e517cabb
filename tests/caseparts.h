#pragma once

#include <map>
#include <sstream>
#include <string>

/// The parts of a case (see cases/README.md) by what stands behind their "--- ".
using Case = std::map<std::string, std::string>;

inline Case partsOf(const std::string &text)
{
    Case parts;
    std::string *part = &parts["file in.xml"];
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("--- "))
            part = &parts[line.substr(4)];
        else if (!line.empty())
            *part += line + '\n';
    }
    return parts;
}

#pragma once

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>
#include <string_view>

struct SourceFile {
    std::string path;
    std::string
        includes;       ///< where it was included first, and what includes that, up to the document
    int firstLine = 1;  ///< what the reader counts as 0
};

/// Where something stands that there is something to say of.
struct Place {
    const SourceFile *file;
    int line;  ///< from 1; 0 for the command line

    std::string text() const
    {
        return line == 0 ? file->path : file->path + ":" + std::to_string(line);
    }
    /// SourceFile::includes of what is included here.
    std::string includes() const
    {
        const std::string &outer = file->includes;
        return line == 0 ? "" : text() + (outer.empty() ? "" : ",\n                 from " + outer);
    }
};

/// Writes messages in the form that compilers have given to theirs and editors read, each once.
class Messages
{
public:
    explicit Messages(FILE *target) : stream(target) {}

    void warn(const Place &place, const char *category, const std::string &text)
    {
        say(place, "warning: " + text + " [" + category + "]");
    }
    void say(const Place &place, const std::string &text)
    {
        const std::string line = place.text() + ": " + text + "\n";
        if (!said.insert(line).second)
            return;
        if (place.file != lastFile && !place.file->includes.empty())
            std::fprintf(stream, "In file included from %s:\n", place.file->includes.c_str());
        lastFile = place.file;
        std::fputs(line.c_str(), stream);
    }
    bool areThere() const { return !said.empty(); }

private:
    FILE *const stream;
    const SourceFile *lastFile = nullptr;
    std::set<std::string> said;
};

/// \a text in quotes, on one line, and only its beginning if it is long.
inline std::string inQuotes(std::string_view text)
{
    constexpr std::size_t most = 60;
    std::string result(text.substr(0, most));
    const auto isControl = [](unsigned char c) { return c < ' '; };
    std::ranges::replace_if(result, isControl, ' ');
    return '"' + result + (text.size() > most ? "...\"" : "\"");
}

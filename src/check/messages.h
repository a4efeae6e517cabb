#pragma once

#include <cstddef>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

/// Where something stands that there is something to say of.
struct Place {
    std::size_t file = 0;     ///< its number, see Messages::fileNumber(); 0 is the command line
    int line = 0;             ///< from 1; 0 for the command line
    std::size_t element = 0;  ///< the number of the element in the file, from 1; 0 for what is none

    bool operator==(const Place &) const = default;
    bool operator<(const Place &other) const
    {
        return std::tie(file, line, element) < std::tie(other.file, other.line, other.element);
    }
};

/// What there is to say of a run, in the form that compilers have given to their messages and
/// editors read. It comes in the order in which the files were loaded, and by line in each.
class Messages
{
public:
    /// The number of a file, the same for the same path. The directive that includes it stands at
    /// \a includedAt; the first one counts.
    std::size_t fileNumber(const std::string &path, const Place &includedAt);

    /// Notes a warning, once.
    void warn(const Place &place, const char *category, const std::string &text);
    /// Notes what ended the run. It stands for all else that there is to say of the element.
    void fail(const Place &place, const std::string &text);
    /// Writes all of them, and says whether there are any.
    bool print(FILE *stream) const;

private:
    struct File {
        std::string path;
        Place includedAt;
    };
    using Message = std::tuple<Place, std::string>;

    std::string placeText(const Place &place) const;
    std::string includesText(std::size_t file) const;

    std::map<std::string, std::size_t> numbers;
    std::vector<File> files = {{"xmlpp-check", {}}};
    std::set<Message> warnings;
    std::vector<Message> errors;
};

/// \a text in quotes, on one line, and only its beginning if it is long.
std::string inQuotes(std::string_view text);
/// How an element of that name is called.
std::string inTag(std::string_view name);

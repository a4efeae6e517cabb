#include "messages.h"

#include <algorithm>

std::size_t Messages::fileNumber(const std::string &path, const Place &includedAt)
{
    const auto [entry, isNew] = numbers.try_emplace(path, files.size());
    if (isNew)
        files.push_back({path, includedAt});
    return entry->second;
}

void Messages::warn(const Place &place, const char *category, const std::string &text)
{
    warnings.emplace(place, std::string("warning: ").append(text) + " [" + category + "]");
}

void Messages::fail(const Place &place, const std::string &text)
{
    std::erase_if(warnings, [&](const Message &each) {
        return place.element > 0 && std::get<Place>(each) == place;
    });
    errors.emplace_back(place, std::string("error: ").append(text));
}

bool Messages::print(FILE *stream) const
{
    std::size_t file = 0;
    std::set<std::string> said;
    const auto write = [&](const Message &message) {
        const auto &[place, text] = message;
        const std::string line = placeText(place).append(": ").append(text).append("\n");
        if (!said.insert(line).second)
            return;
        if (place.file != file)
            std::fputs(includesText(place.file).c_str(), stream);
        file = place.file;
        std::fputs(line.c_str(), stream);
    };
    std::ranges::for_each(warnings, write);
    std::ranges::for_each(errors, write);
    return !warnings.empty() || !errors.empty();
}

std::string Messages::placeText(const Place &place) const
{
    std::string text = files[place.file].path;
    if (place.line > 0)
        text.append(":").append(std::to_string(place.line));
    return text;
}

/// What stands above the messages of a file that is included, a line for each include.
std::string Messages::includesText(std::size_t file) const
{
    std::string text;
    for (Place at = files[file].includedAt; at.line > 0; at = files[at.file].includedAt)
        text.append(text.empty() ? "In file included from " : ",\n                 from ")
            .append(placeText(at));
    return text.empty() ? text : text.append(":\n");
}

std::string inQuotes(std::string_view text)
{
    constexpr std::size_t most = 60;
    std::string result(text.substr(0, most));
    std::ranges::replace_if(
        result, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return std::string("\"").append(result).append(text.size() > most ? "...\"" : "\"");
}

std::string inTag(std::string_view name)
{
    return std::string("<").append(name).append(">");
}

#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

/// A reference to a macro as it is written: $(name), $(name:default).
struct MacroReference {
    std::string_view name;
    std::string_view text;
    bool hasDefault;
    bool isInner;  ///< whether it stands in another one

    /// Whether it can mean any macro: its name holds another reference, or a further pass makes one.
    bool isComputed() const { return name.empty() || name.find('$') != std::string_view::npos; }
};

/// Hands every reference in \a text to \a take, inner ones before the one that holds them. Returns
/// whether all that begin are closed.
template <typename Take>
bool forEachReference(std::string_view text, Take take)
{
    struct Parenthesis {
        std::size_t start;
        bool isReference;
        std::size_t colon = std::string_view::npos;  ///< the first one behind it
    };
    std::vector<Parenthesis> open;
    std::size_t references = 0;  ///< that are open
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(') {
            open.push_back({i, i > 0 && text[i - 1] == '$'});
            references += open.back().isReference;
        } else if (text[i] == ':' && !open.empty()) {
            open.back().colon = std::min(open.back().colon, i);
        } else if (text[i] == ')' && !open.empty()) {
            const auto [start, isReference, colon] = open.back();
            open.pop_back();
            if (!open.empty())
                open.back().colon = std::min(open.back().colon, colon);
            if (!isReference)
                continue;
            --references;
            take(MacroReference{text.substr(start + 1, std::min(colon, i) - start - 1),
                                text.substr(start - 1, i + 2 - start), colon<i, references> 0});
        }
    }
    return references == 0;
}

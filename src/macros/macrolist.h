#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

/// Hands the items of a macro list, as documents write it, to \a take, one after the other and
/// empty ones included. It is cut at every ';'; a backslash takes the character after it
/// literally, whatever it is, and the last character of the text stands for itself. An item is a
/// view that is valid during the call only.
template <typename Take>
void forEachListItem(std::string_view text, Take take)
{
    std::string unescaped;     // what is not part of the run below
    std::size_t runStart = 0;  // of the characters that stand for themselves
    const auto finishItem = [&](std::size_t end) {
        const std::string_view run = text.substr(runStart, end - runStart);
        take(unescaped.empty() ? run : std::string_view(unescaped.append(run)));
        unescaped.clear();
        runStart = end + 1;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            unescaped.append(text, runStart, i - runStart);
            runStart = ++i;
        } else if (text[i] == ';') {
            finishItem(i);
        }
    }
    finishItem(text.size());
}

/// The name that a list's item defines, and its value: what stands before the first '=' and after
/// it. An item without '=' is all name.
inline std::pair<std::string_view, std::string_view> nameAndValue(std::string_view item)
{
    const std::size_t equals = std::min(item.find('='), item.size());
    return {item.substr(0, equals), item.substr(std::min(equals + 1, item.size()))};
}

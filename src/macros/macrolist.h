#pragma once

#include <string>
#include <string_view>

/// Hands the items of a macro list, as documents write it, to \a take, one after the other and
/// empty ones included. It is cut at every ';'; a backslash takes the character after it
/// literally, whatever it is, and the last character of the text stands for itself. An item is a
/// view that is valid during the call only.
template <typename Char, typename Take>
void forEachListItem(std::basic_string_view<Char> text, Take take)
{
    std::basic_string<Char> unescaped;  // what is not part of the run below
    std::size_t runStart = 0;           // of the characters that stand for themselves
    const auto finishItem = [&](std::size_t end) {
        const auto run = text.substr(runStart, end - runStart);
        if (unescaped.empty()) {
            take(run);
        } else {
            take(std::basic_string_view<Char>(unescaped.append(run)));
            unescaped.clear();
        }
        runStart = end + 1;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == Char('\\') && i + 1 < text.size()) {
            unescaped.append(text, runStart, i - runStart);
            runStart = ++i;
        } else if (text[i] == Char(';')) {
            finishItem(i);
        }
    }
    finishItem(text.size());
}

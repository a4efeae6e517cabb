#pragma once

#include <algorithm>
#include <string_view>

/// Hands the pieces of \a text between \a separator to \a take, in their order. Empty ones are left
/// out, and nothing is trimmed.
template <typename Take>
void forEachPiece(std::string_view text, char separator, Take take)
{
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, text.find(separator));
        if (!piece.empty())
            take(piece);
        text.remove_prefix(std::min(piece.size() + 1, text.size()));
    }
}

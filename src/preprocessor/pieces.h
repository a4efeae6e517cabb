#pragma once

#include "budget.h"

#include <algorithm>
#include <string_view>

namespace directive
{

/// Hands the pieces of \a text between \a separator to \a take, in their order, and spends \a price
/// for each, beside what the search costs. Empty ones are left out, and nothing is trimmed.
template <typename Take>
void forEachPiece(Budget *budget, Price price, std::string_view text, char separator, Take take)
{
    budget->spendText(text.size());
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, text.find(separator));
        budget->spend(piece.empty() ? Price::EmptyPiece : price, 1);
        if (!piece.empty())
            take(piece);
        text.remove_prefix(std::min(piece.size() + 1, text.size()));
    }
}

}  // namespace directive

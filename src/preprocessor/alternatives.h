#pragma once

#include <string_view>

/// Whether one of the pieces of \a list (Latin-1, can be null), cut at every ',', is \a value to
/// the letter. Empty pieces do not count and nothing is trimmed.
bool hasAlternative(const char *list, std::string_view value);

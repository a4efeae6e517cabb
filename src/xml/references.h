#pragma once

#include <string_view>

/// A character that has a name, and the reference to it by that name.
struct Entity {
    char character;
    std::string_view reference;
};

/// Those that are decoded, and written for what may not stand as it is.
constexpr Entity entities[] = {{'"', "&quot;"}, {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}};

/// Decodes the references of the text from \a from up to \a end to \a to, which can be \a from
/// itself, and ends it with a NUL. With \a dropReturns the carriage returns that are
/// written as such are left out.
void decodeReferences(const char *from, const char *end, char *to, bool dropReturns);

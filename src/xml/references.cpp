#include "references.h"

#include <cstdint>
#include <string_view>

namespace
{

/// What \a c counts in a numeric reference of any base; -1 for what is no digit at all.
int digitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'Z')
        return c - 'A' + 10;
    return -1;
}

/// Decodes the numeric reference whose "&#" stands before \a text to its value modulo 256.
/// Returns the bytes of \a text that it takes, 0 when it is none.
std::size_t decodeNumber(std::string_view text, char *decoded)
{
    const bool isHex = text.starts_with('x');
    std::uint32_t value = 0;
    for (std::size_t i = isHex ? 1 : 0; i < text.size(); ++i) {
        if (text[i] == ';') {
            *decoded = static_cast<char>(value & 0xFF);
            return i + 1;
        }
        const int digit = digitValue(text[i]);
        if (digit < 0)
            return 0;
        value = value * (isHex ? 16 : 10) + static_cast<std::uint32_t>(digit);
    }
    return 0;
}

/// The same for any reference, whose '&' stands before \a text.
std::size_t decodeReference(std::string_view text, char *decoded)
{
    static constexpr struct {
        std::string_view name;
        char character;
    } entities[] = {{"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"amp;", '&'}};
    for (const auto &entity : entities) {
        if (text.starts_with(entity.name)) {
            *decoded = entity.character;
            return entity.name.size();
        }
    }
    if (!text.starts_with('#'))
        return 0;
    const std::size_t taken = decodeNumber(text.substr(1), decoded);
    return taken > 0 ? taken + 1 : 0;
}

}  // namespace

void decodeReferences(const char *from, const char *end, char *to, bool dropReturns)
{
    while (from != end) {
        const char c = *from++;
        if (dropReturns && c == '\r')
            continue;
        *to = c;
        if (c == '&')
            from += decodeReference({from, static_cast<std::size_t>(end - from)}, to);
        ++to;
    }
    *to = '\0';
}

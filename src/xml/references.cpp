#include "references.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace
{

/// What \a c counts in a numeric reference of any base; -1 for what is no digit at all.
int digitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const int letter = (c | 0x20) - 'a';
    return letter >= 0 && letter < 26 ? letter + 10 : -1;
}

/// Decodes the reference that \a text begins with to its value modulo 256. Returns the bytes that it
/// takes, 0 when it is none.
std::size_t decodeNumber(std::string_view text, char *decoded)
{
    const bool isHex = text.starts_with("&#x");
    std::uint32_t value = 0;
    for (std::size_t i = isHex ? 3 : 2; i < text.size(); ++i) {
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

/// The same for any reference.
std::size_t decodeReference(std::string_view text, char *decoded)
{
    for (const Entity &entity : entities) {
        if (text.starts_with(entity.reference)) {
            *decoded = entity.character;
            return entity.reference.size();
        }
    }
    return text.starts_with("&#") ? decodeNumber(text, decoded) : 0;
}

}  // namespace

void decodeReferences(const char *from, const char *end, char *to, bool dropReturns)
{
    std::string_view rest(from, end);
    for (;;) {
        const std::size_t length = std::min(rest.find('&'), rest.size());
        to = dropReturns ? std::remove_copy(rest.data(), rest.data() + length, to, '\r')
                         : static_cast<char *>(std::memmove(to, rest.data(), length)) + length;
        rest.remove_prefix(length);
        if (rest.empty())
            break;
        const std::size_t taken = decodeReference(rest, to);
        if (taken == 0)
            *to = '&';
        ++to;
        rest.remove_prefix(std::max(taken, std::size_t{1}));
    }
    *to = '\0';
}

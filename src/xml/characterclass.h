#pragma once

#include <array>
#include <cstdint>

/// The character classes of the reader and the writer, by byte and whatever the locale. NUL is
/// in none of them, so that a scan over one ends with the text.
namespace CharacterClass
{

constexpr std::uint8_t Space = 1;      ///< isspace() of the "C" locale
constexpr std::uint8_t Name = 2;       ///< ASCII letters and digits, '_', ':' and '-'
constexpr std::uint8_t NameStart = 4;  ///< the same without digits
constexpr std::uint8_t Plain = 8;      ///< written as it is, in values and character data

constexpr auto table = [] {
    std::array<std::uint8_t, 256> classes{};
    for (unsigned byte = 0; byte != classes.size(); ++byte) {
        const bool isSpace = byte == ' ' || (byte >= '\t' && byte <= '\r');
        const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        const bool isDigit = byte >= '0' && byte <= '9';
        const bool startsName = isLetter || byte == '_' || byte == ':' || byte == '-';
        const bool isEscaped = byte == '"' || byte == '&' || byte == '<' || byte == '>';
        const bool isPlain = byte >= 0x20 && byte <= 0x7E && !isEscaped;
        const int all = (isSpace ? Space : 0) | (startsName || isDigit ? Name : 0) |
                        (startsName ? NameStart : 0) | (isPlain ? Plain : 0);
        classes[byte] = static_cast<std::uint8_t>(all);
    }
    return classes;
}();

constexpr bool is(std::uint8_t classes, char byte)
{
    return (table[static_cast<unsigned char>(byte)] & classes) != 0;
}

}  // namespace CharacterClass

#include "valueformat.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace
{

struct Notation {
    int base;
    const char *prefix;
    std::size_t bitsPerDigit;
};

constexpr Notation notations[] = {{16, "0x", 4}, {8, "0", 3}, {2, "0b", 1}};

/// What printf makes of one number.
template <typename Number>
std::string formatted(const char *format, Number number)
{
    const int length = std::snprintf(nullptr, 0, format, number);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    std::snprintf(text.data(), text.size() + 1, format, number);
    return text;
}

std::string characterText(std::uint16_t code)
{
    if (code >= 32 && code <= 126)
        return {static_cast<char>(code)};
    return formatted("\\u%04x", static_cast<unsigned int>(code));
}

std::string decimalText(const ExpressionValue &value, const char *format)
{
    if (value.kind == PlainValue::Signed)
        return std::to_string(value.toInt64());
    if (value.kind == PlainValue::Unsigned)
        return std::to_string(value.toUInt64());
    const double number = value.toDouble();
    return std::isnan(number)   ? "NaN"
           : std::isinf(number) ? "Inf"
                                : formatted(format ? format : "%g", number);
}

std::string notationText(const ExpressionValue &value, const Notation &notation, bool zeroPad)
{
    const std::size_t width =
        value.bitWidth ? value.bitWidth : static_cast<std::uint32_t>(value.size) * 8;
    const std::size_t bits = std::min<std::size_t>(width, 64);
    char digits[64];
    const char *end =
        std::to_chars(std::begin(digits), std::end(digits), value.toUInt64(), notation.base).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    const std::size_t wanted = (bits + notation.bitsPerDigit - 1) / notation.bitsPerDigit;
    std::string text = notation.prefix;
    if (zeroPad && wanted > length)
        text.append(wanted - length, '0');
    return text.append(digits, length);
}

}  // namespace

std::string toString(const ExpressionValue &value, int base, bool zeroPad, bool asCharacter,
                     const char *format)
{
    if (value.isBoolean())
        return value.toBool() ? "true" : "false";
    if (value.isObject())
        return value.object.get()->text();
    if (!value.isNumeric())
        return value.text;
    if (asCharacter)
        return characterText(static_cast<std::uint16_t>(value.payload));
    for (const Notation &notation : notations) {
        if (notation.base == base)
            return notationText(value, notation, zeroPad);
    }
    return decimalText(value, format);
}

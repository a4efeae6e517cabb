#include "valueformat.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace
{

/// What printf makes of one number.
template <typename Number>
std::string formatted(const char *format, Number number)
{
    const int length = std::snprintf(nullptr, 0, format, number);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    std::snprintf(text.data(), text.size() + 1, format, number);
    return text;
}

/// The unsigned view in digits of so many bits.
std::string digits(const ExpressionValue &value, std::string_view prefix, std::size_t bitsPerDigit,
                   bool zeroPad)
{
    const std::size_t width =
        value.bitWidth ? value.bitWidth : static_cast<std::uint32_t>(value.size) * 8;
    const std::size_t wanted = (std::min<std::size_t>(width, 64) + bitsPerDigit - 1) / bitsPerDigit;
    char text[64];
    const auto [end, error] =
        std::to_chars(std::begin(text), std::end(text), value.toUInt64(), 1 << bitsPerDigit);
    const auto length = static_cast<std::size_t>(end - text);
    const std::size_t zeros = zeroPad && wanted > length ? wanted - length : 0;
    return std::string(prefix).append(zeros, '0').append(text, length);
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
    if (asCharacter) {
        const unsigned int code = value.payload & 0xFFFF;
        return formatted(code >= 32 && code <= 126 ? "%c" : "\\u%04x", code);
    }
    if (base == 16)
        return digits(value, "0x", 4, zeroPad);
    if (base == 8)
        return digits(value, "0", 3, zeroPad);
    if (base == 2)
        return digits(value, "0b", 1, zeroPad);
    if (value.kind == PlainValue::Signed)
        return std::to_string(value.toInt64());
    if (value.kind == PlainValue::Unsigned)
        return std::to_string(value.toUInt64());
    const double number = value.toDouble();
    return std::isnan(number)   ? "NaN"
           : std::isinf(number) ? "Inf"
                                : formatted(format ? format : "%g", number);
}

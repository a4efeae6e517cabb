#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>

/// "0x" and the digits of \a value, in upper case and without leading zeros.
inline std::string toHexadecimal(std::uint32_t value)
{
    char digits[8];
    char *const end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
    std::transform(digits, end, digits,
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });
    return std::string("0x").append(digits, end);
}

#pragma once

#include "expressionvalue.h"

/// The text of a value: "true" or "false", a number, the text of a string or of an object, nothing
/// for the void value. Numbers are written by \a base:
///
///     10        decimal; floating values by \a format, as printf writes one double in the "C"
///               locale, which the process must not leave; "NaN" and "Inf" stand for what is none
///     16, 8, 2  the unsigned view behind "0x", "0" or "0b", in lower case; with \a zeroPad filled
///               up with zeros to the digits that the value's bitWidth, or else its size, needs
///
/// With \a asCharacter a number is the character of the low 16 bits of its payload, or "\u" and
/// four hexadecimal digits where that is none of ASCII's printable ones. A null format is "%g".
/// A base other than these four counts as 10.
std::string toString(const ExpressionValue &value, int base = 10, bool zeroPad = false,
                     bool asCharacter = false, const char *format = nullptr);

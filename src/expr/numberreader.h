#pragma once

#include <QByteArrayView>

/// The number that \a text spells: white space, a sign, then "0x" (base 16), "0b" (base 2) or "0"
/// (base 8) and digits, or digits of base 10. Every character up to the end counts as a digit,
/// whatever the base: "08" is 8, and 'z' is 35. The value wraps modulo 2^64, and a number with a
/// minus sign is its two's complement. Cannot fail; text without digits is 0.
quint64 readNumber(QByteArrayView text);

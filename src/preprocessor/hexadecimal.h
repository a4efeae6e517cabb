#pragma once

#include <QString>

#include <cstdint>

/// "0x" and the digits of \a value, in upper case and without leading zeros.
inline QString toHexadecimal(std::uint32_t value)
{
    return QStringLiteral("0x") + QString::number(value, 16).toUpper();
}

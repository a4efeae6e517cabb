#include "expressionvalue.h"

#include <limits>

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<float>::is_iec559);

std::int64_t PlainValue::toInt64() const
{
    if (isInteger())
        return static_cast<std::int64_t>(payload << unusedBits()) >> unusedBits();
    if (kind == Floating) {
        const auto number = std::bit_cast<double>(payload);
        constexpr double limit = 9223372036854775808.0;  // 2^63
        // Written so that a NaN, for which every comparison is false, is out of range too.
        return number >= -limit && number < limit ? static_cast<std::int64_t>(number)
                                                  : std::numeric_limits<std::int64_t>::min();
    }
    return isBoolean() && toBool() ? 1 : 0;
}

std::uint64_t PlainValue::toUInt64() const
{
    if (isInteger())
        return payload << unusedBits() >> unusedBits();
    if (kind == Floating)
        return size == 4 ? std::bit_cast<std::uint32_t>(
                               static_cast<float>(std::bit_cast<double>(payload)))
                         : payload;
    return isBoolean() && toBool() ? 1 : 0;
}

double PlainValue::toDouble() const
{
    if (kind == Floating)
        return std::bit_cast<double>(payload);
    return kind == Unsigned ? static_cast<double>(toUInt64()) : static_cast<double>(toInt64());
}
